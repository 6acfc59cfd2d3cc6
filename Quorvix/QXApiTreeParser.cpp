#include "Quorvix/QXApiTreeParser.h"

#include "Quorvix/QXApiTree.h"
#include "Quorvix/QXSwiftModelGenerator.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringEncoder>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

NSError invalidTextError()
{
    return {u"LogTreeParser"_s, -1, QCoreApplication::translate("Quorvix", "Invalid UTF-8 string")};
}

} // namespace

Result<QXApiTreeParser::Fields> QXApiTreeParser::parse(QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray utf8 = encoder.encode(text);
    return encoder.hasError() ? invalidTextError() : parse(QByteArrayView(utf8));
}

Result<QXApiTreeParser::Fields> QXApiTreeParser::parse(QByteArrayView utf8)
{
    const Result<JSONDocument> document = JSONReader::parse(utf8);
    if (document)
        return Fields{QXApiTree::make(document.value().root())};
    return isValidUtf8(utf8) ? document.error() : invalidTextError();
}

Result<QString> QXApiTreeParser::swiftModel(const QXApiTreeField &root, const QString &rootName)
{
    return QXSwiftModelGenerator::source(root, rootName);
}
