#include "Quorvix/QXBreakpointEditorModel.h"

#include "Quorvix/QXBreakpointCenter.h"

#include "Platform/MainActor.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <utility>

QXBreakpointEditorModel::QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent)
    : QObject(parent), m_item(item.id), m_body(item.data.value_or(QByteArray())),
      m_displayTitle(item.displayTitle()), m_statusCodeText(QString::number(item.response->statusCode())),
      m_document(new QXTextDocument(QString(), this)), m_task(new QXBackgroundTask(this))
{
    m_task->perform(
        m_body.size(), QCoreApplication::translate("Quorvix", "Loading Body…"),
        [body = m_body](QXTaskProgress *) { return Quorvix::UTF8Text::replacing(body); },
        [this](const QString &text) {
            m_document->setText(text);
            m_isLoaded = true;
            Q_EMIT isLoadedChanged();
        });
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
    const auto textOf = [isLoaded = m_isLoaded, text = bodyText(), body = m_body] {
        return isLoaded ? text : Quorvix::UTF8Text::replacing(body);
    };
    m_task->perform(
        qMax(m_body.size(), m_document->length()),
        QCoreApplication::translate("Quorvix", "Applying Changes…"),
        [textOf](QXTaskProgress *) { return textOf().toUtf8(); },
        [this](const QByteArray &body) {
            release([statusCode = m_statusCodeText, body] {
                QXBreakpointCenter::shared().applyBody(statusCode, body);
            });
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
