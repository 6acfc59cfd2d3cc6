#include "Quorvix/QXBodyContent.h"

#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXLongText.h"
#include "Quorvix/QXTaskSteps.h"

namespace {

bool isAscii(QByteArrayView text)
{
    // The loop has no early exit, so that the compiler can vectorise it.
    uchar bits = 0;
    for (const char c : text)
        bits |= uchar(c);
    return bits < 0x80;
}

} // namespace

QXTextContent QXBodyContent::of(const QByteArray &body, QXTaskProgress *progress)
{
    const auto utf8 = QXBodyText::readableUtf8(body, progress);
    if (!utf8)
        return QXTextContent::hexadecimal(body);
    if (isAscii(*utf8))
        return QXTextContent::ascii(*utf8);
    QString text;
    static_cast<void>(QXLongText::appendUtf8(text, *utf8, QXTaskSteps(progress)));
    return QXTextContent(text);
}

QString QXBodyContent::text(const QXTextContent &content, QXTaskSteps steps)
{
    if (!content.isHexadecimal())
        return content.text();
    QString text;
    static_cast<void>(QXLongText::appendHex(text, content.bytes(), QXLongText::Digits::InPairs, steps));
    return text;
}
