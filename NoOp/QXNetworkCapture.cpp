#include "Quorvix/QXNetworkCapture.h"

/// The header owns one by a pointer, which is always null here.
class QXUploadTee
{
};

bool QXNetworkCapture::isCaptured(const QUrl &)
{
    return false;
}

// The header refers to the functions of an object, but makes none for a URL that is not captured.

QXNetworkCapture::QXNetworkCapture(QNetworkAccessManager *manager, Operation, const QNetworkRequest &,
                                   QIODevice *body)
    : m_manager(manager), m_upload(body), m_isHeld(false)
{
}

QXNetworkCapture::~QXNetworkCapture() = default;

QIODevice *QXNetworkCapture::upload() const
{
    return m_upload;
}

QNetworkReply *QXNetworkCapture::wrap(QNetworkReply *inner)
{
    // What the inspector needs them for is not here.
    Q_UNUSED(m_manager)
    Q_UNUSED(m_isHeld)
    return inner;
}

void QXNetworkCapture::attach(QNetworkAccessManager *) {}

bool QXNetworkCapture::isAttached(const QNetworkAccessManager *)
{
    return false;
}

void QXNetworkCapture::setIncludesLocalUrls(bool) {}
