#include "Quorvix/QXBreakpointEditorModel.h"

#include "Quorvix/QXBreakpointCenter.h"

#include <QtCore/QStringDecoder>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace {

/// What is no UTF-8 is replaced. A byte order mark stays: QString::fromUtf8() would drop it, and with it
/// three bytes of a body that nobody has edited.
QString editableText(const QByteArray &body)
{
    return QStringDecoder(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom)
        .decode(body);
}

} // namespace

QXBreakpointEditorModel::QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent)
    : QObject(parent), m_displayTitle(item.displayTitle()),
      m_statusCodeText(QString::number(item.response->statusCode())),
      m_document(new QXTextDocument(editableText(item.data.value_or(QByteArray())), this))
{
}

void QXBreakpointEditorModel::setStatusCodeText(const QString &text)
{
    if (m_statusCodeText == text)
        return;
    m_statusCodeText = text;
    Q_EMIT statusCodeTextChanged();
}

void QXBreakpointEditorModel::continueResponse()
{
    QXBreakpointCenter::shared().continueActive();
}

void QXBreakpointEditorModel::applyChanges()
{
    // Copies: the release replaces the editor, and this model with it.
    const QString statusCode = m_statusCodeText;
    const QString body = bodyText();
    QXBreakpointCenter::shared().apply(statusCode, body);
}

void QXBreakpointEditorModel::copyBody()
{
    QGuiApplication::clipboard()->setText(bodyText());
}

void QXBreakpointEditorModel::deleteBody()
{
    m_document->replace(0, m_document->length(), QString());
}
