#include "Quorvix/QXApiTreeParser.h"

#include "Quorvix/QXApiTree.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringEncoder>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The share of the time that it takes to read the text, which is one step; the rest builds the tree.
constexpr double readingShare = 0.4;

NSError invalidTextError()
{
    return {u"LogTreeParser"_s, -1, QCoreApplication::translate("Quorvix", "Invalid UTF-8 string")};
}

Result<QXApiTreeParser::Fields> treeOf(Result<JSONDocument> document, QXTaskProgress *progress)
{
    if (!document)
        return document.error();
    if (!beginStage(progress, 1))
        return cancelledError();
    const QXTaskSteps steps(progress, document.value().size());
    auto root = QXApiTree::make(std::move(document).value(), steps);
    if (!root)
        return cancelledError();
    finish(progress);
    return QXApiTreeParser::Fields{std::move(root)};
}

} // namespace

Result<QXApiTreeParser::Fields> QXApiTreeParser::parse(QStringView text, QXTaskProgress *progress)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    QByteArray utf8 = encoder.encode(text);
    if (encoder.hasError())
        return invalidTextError();
    if (!beginStage(progress, readingShare))
        return cancelledError();
    return treeOf(JSONReader::parseAndFree(std::move(utf8)), progress);
}

Result<QXApiTreeParser::Fields> QXApiTreeParser::parse(QByteArrayView utf8, QXTaskProgress *progress)
{
    if (!beginStage(progress, readingShare))
        return cancelledError();
    Result<JSONDocument> document = JSONReader::parse(utf8);
    if (!document && !isValidUtf8(utf8))
        return invalidTextError();
    return treeOf(std::move(document), progress);
}

Result<QString> QXApiTreeParser::swiftModel(const QXApiTreeField &root, const QString &rootName,
                                            QXTaskProgress *progress)
{
    return QXSwiftModelGenerator::source(root, rootName, progress);
}
