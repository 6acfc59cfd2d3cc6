#include "Quorvix/QXBreakpointEditorModel.h"

#include "Quorvix/QXBreakpointCenter.h"

#include "Platform/UTF8Text.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

QXBreakpointEditorModel::QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent)
    : QObject(parent), m_displayTitle(item.displayTitle()),
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
    QXBreakpointCenter::shared().continueActive();
}

void QXBreakpointEditorModel::applyChanges()
{
    // Copies are needed: releasing the response replaces the editor and deletes this model.
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
