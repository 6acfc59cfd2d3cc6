#include "Quorvix/QXBreakpointEditorModel.h"

#include "Quorvix/QXBreakpointCenter.h"

#include "Platform/MainActor.h"
#include "Platform/UTF8Text.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <utility>

QXBreakpointEditorModel::QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent)
    : QObject(parent), m_item(item.id), m_displayTitle(item.displayTitle()),
      m_statusCodeText(QString::number(item.response->statusCode())),
      m_document(new QXTextDocument(Quorvix::UTF8Text::replacing(item.data.value_or(QByteArray())), this))
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
    release([] { QXBreakpointCenter::shared().continueActive(); });
}

void QXBreakpointEditorModel::applyChanges()
{
    release([statusCode = m_statusCodeText, body = bodyText()] {
        QXBreakpointCenter::shared().apply(statusCode, body);
    });
}

/// Only the first press counts: a second one must not release the next response.
void QXBreakpointEditorModel::release(std::function<void()> release)
{
    if (std::exchange(m_isReleased, true))
        return;
    Quorvix::MainActor::schedule([item = m_item, release = std::move(release)] {
        const auto &active = QXBreakpointCenter::shared().activeBreakpoint();
        if (active && active->id == item)
            release();
    });
}

void QXBreakpointEditorModel::copyBody()
{
    QGuiApplication::clipboard()->setText(bodyText());
}

void QXBreakpointEditorModel::deleteBody()
{
    m_document->replace(0, m_document->length(), QString());
}
