#include "Quorvix/QXBreakpointEditorModel.h"

#include "Quorvix/QXBreakpointCenter.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace {

/// What a text document makes of @p text: one kind of line end, and no hard spaces.
QString asEditorText(QString text)
{
    text.replace(QLatin1StringView("\r\n"), QLatin1StringView("\n"));
    for (QChar &character : text) {
        switch (character.unicode()) {
        case u'\r':
        case 0xfdd0:
        case 0xfdd1:
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
            character = u'\n';
            break;
        case QChar::Nbsp:
            character = u' ';
            break;
        default:
            break;
        }
    }
    return text;
}

} // namespace

QXBreakpointEditorModel::QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent)
    : QObject(parent), m_displayTitle(item.displayTitle()),
      m_statusCodeText(QString::number(item.response->statusCode())),
      m_bodyText(QString::fromUtf8(item.data.value_or(QByteArray())))
{
}

void QXBreakpointEditorModel::setStatusCodeText(const QString &text)
{
    if (m_statusCodeText == text)
        return;
    m_statusCodeText = text;
    Q_EMIT statusCodeTextChanged();
}

void QXBreakpointEditorModel::setBodyText(const QString &text)
{
    if (m_bodyText == text || asEditorText(m_bodyText) == text)
        return;
    m_bodyText = text;
    Q_EMIT bodyTextChanged();
}

void QXBreakpointEditorModel::continueResponse()
{
    QXBreakpointCenter::shared().continueActive();
}

void QXBreakpointEditorModel::applyChanges()
{
    // Copies: the release replaces the editor, and this model with it.
    const QString statusCode = m_statusCodeText;
    const QString body = m_bodyText;
    QXBreakpointCenter::shared().apply(statusCode, body);
}

void QXBreakpointEditorModel::copyBody()
{
    QGuiApplication::clipboard()->setText(m_bodyText);
}

void QXBreakpointEditorModel::deleteBody()
{
    setBodyText(QString());
}
