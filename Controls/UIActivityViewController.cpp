#include "Controls/UIActivityViewController.h"

#include "Platform/BackgroundThread.h"
#include "Platform/MainActor.h"
#include "Platform/NSByteCountFormatter.h"
#include "Platform/ReplaceFile.h"
#include "Platform/ShortText.h"
#include "Platform/WriteAll.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringDecoder>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>

#include <memory>
#include <utility>

namespace Quorvix {

namespace {

/// The length of the preview, in bytes.
constexpr qsizetype previewLength = 4096;
constexpr qsizetype mostPreviewLines = 8;
constexpr qsizetype titleLength = 80;
/// The length of a text up to which its UTF-8 form is measured at once, in UTF-16 units: a millisecond or
/// two.
constexpr qsizetype shortText = 1'000'000;
/// How much is saved between two looks at the progress.
constexpr qsizetype block = 1 << 20;

/// The text at the start of @p bytes, without a character that is cut off at the end; empty when the bytes
/// are not text.
QString leadingText(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    return decoder.hasError() || text.contains(QChar::Null) ? QString() : text;
}

QStringList firstLines(const QString &text)
{
    QStringList lines = text.split(u'\n').first(qMin(mostPreviewLines, text.count(u'\n') + 1));
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (QString &line : lines) {
        // A carriage return would begin another line.
        line = ShortText::beginning(line.remove(u'\r'));
    }
    return lines;
}

/// The URL of an item that is a QUrl. Text that looks like a URL stays text.
QUrl fileUrl(const QVariant &item)
{
    return item.typeId() == QMetaType::QUrl ? item.toUrl() : QUrl();
}

/// A path based on @p path that no file uses yet.
QString unusedPath(const QString &path)
{
    const QFileInfo info(path);
    QString candidate = path;
    for (int number = 2; QFileInfo::exists(candidate); ++number) {
        const QString suffix = info.completeSuffix().isEmpty() ? QString() : u'.' + info.completeSuffix();
        candidate = QStringLiteral("%1/%2 %3%4").arg(info.path(), info.baseName()).arg(number).arg(suffix);
    }
    return candidate;
}

NSError writeError(const QString &message)
{
    return {NSCocoaErrorDomain, NSFileWriteUnknownError, message};
}

/// Reports the progress. An error if the task is cancelled, so that no file is made.
std::optional<NSError> checkpoint(QXTaskProgress *progress, qsizetype done, qsizetype total)
{
    if (!progress)
        return std::nullopt;
    progress->report(done, total);
    return progress->isCancelled() ? std::optional(writeError(QString())) : std::nullopt;
}

std::optional<NSError> copyFile(const QString &path, QIODevice &target, QXTaskProgress *progress)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return writeError(source.errorString());
    while (!source.atEnd()) {
        const QByteArray bytes = source.read(block);
        if (source.error() != QFileDevice::NoError)
            return writeError(source.errorString());
        if (auto error = writeAll(target, bytes))
            return error;
        if (auto error = checkpoint(progress, source.pos(), source.size()))
            return error;
    }
    return std::nullopt;
}

/// Calls @p take with the UTF-8 form of each block of a text, until it returns an error. No block splits a
/// pair of surrogates.
template<typename Take>
std::optional<NSError> forEachBlock(QStringView text, Take take)
{
    for (qsizetype start = 0, end = 0; start < text.size(); start = end) {
        end = qMin(start + block, text.size());
        if (end < text.size() && text[end].isLowSurrogate())
            --end;
        if (auto error = take(text.sliced(start, end - start).toUtf8(), end))
            return error;
    }
    return std::nullopt;
}

std::optional<NSError> copyText(const QString &text, QIODevice &target, QXTaskProgress *progress)
{
    return forEachBlock(text, [&](const QByteArray &utf8, qsizetype done) {
        auto error = writeAll(target, utf8);
        return error ? error : checkpoint(progress, done, text.size());
    });
}

qsizetype utf8Size(const QString &text)
{
    qsizetype size = 0;
    (void)forEachBlock(text, [&](const QByteArray &utf8, qsizetype) {
        size += utf8.size();
        return std::optional<NSError>();
    });
    return size;
}

} // namespace

UIActivityViewController::UIActivityViewController(QObject *parent) : QObject(parent) {}

UIActivityViewController::~UIActivityViewController() = default;

void UIActivityViewController::setActivityItems(const QVariantList &items)
{
    m_items = items;
    m_itemsToken = std::make_shared<const bool>(true);
    measureText();
    Q_EMIT activityItemsChanged();
    Q_EMIT subtitleChanged();
}

void UIActivityViewController::measureText()
{
    m_textSize.reset();
    const QString shared = text();
    if (shared.size() <= shortText) {
        m_textSize = utf8Size(shared);
        return;
    }
    BackgroundThread::post([this, token = std::weak_ptr(m_itemsToken), shared] {
        MainActor::schedule([this, token, size = utf8Size(shared)] {
            if (token.expired())
                return;
            m_textSize = size;
            Q_EMIT subtitleChanged();
        });
    });
}

bool UIActivityViewController::isFile() const
{
    return !filePath().isEmpty();
}

QString UIActivityViewController::filePath() const
{
    return m_items.isEmpty() ? QString() : fileUrl(m_items.constFirst()).toLocalFile();
}

QString UIActivityViewController::fileName() const
{
    return QFileInfo(filePath()).fileName();
}

QString UIActivityViewController::text() const
{
    return m_items.isEmpty() || isFile() ? QString() : m_items.constFirst().toString();
}

QString UIActivityViewController::title() const
{
    if (!m_title.isEmpty())
        return m_title;
    if (isFile())
        return fileName();
    return ShortText::beginning(text().left(previewLength).trimmed().section(u'\n', 0, 0), titleLength);
}

void UIActivityViewController::setTitle(const QString &title)
{
    m_title = title;
    Q_EMIT activityItemsChanged();
}

QString UIActivityViewController::subtitle() const
{
    if (isFile())
        return fileName() + QStringLiteral(" · ") +
               NSByteCountFormatter::string(QFileInfo(filePath()).size());
    const QString kind = QCoreApplication::translate("Quorvix", "Text");
    return m_textSize ? kind + QStringLiteral(" · ") + NSByteCountFormatter::string(*m_textSize) : kind;
}

QStringList UIActivityViewController::previewLines() const
{
    if (!isFile())
        return firstLines(text().left(previewLength));
    QFile file(filePath());
    return file.open(QIODevice::ReadOnly) ? firstLines(leadingText(file.read(previewLength))) : QStringList();
}

QString UIActivityViewController::suggestedPath() const
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (!QFileInfo(folder).isDir())
        folder = QDir::homePath();
    const QString name = isFile() ? fileName() : QStringLiteral("Quorvix.txt");
    return QDir::toNativeSeparators(unusedPath(folder + u'/' + name));
}

void UIActivityViewController::copy()
{
    auto mimeData = std::make_unique<QMimeData>();
    QStringList texts;
    QList<QUrl> urls;
    for (const QVariant &item : std::as_const(m_items)) {
        const QUrl url = fileUrl(item);
        if (url.isLocalFile()) {
            urls.append(url);
            texts.append(QDir::toNativeSeparators(url.toLocalFile()));
        } else {
            texts.append(item.toString());
        }
    }
    // join() would copy a single text.
    mimeData->setText(texts.size() == 1 ? texts.constFirst() : texts.join(u'\n'));
    if (!urls.isEmpty())
        mimeData->setUrls(urls);
    QGuiApplication::clipboard()->setMimeData(mimeData.release());
}

void UIActivityViewController::saveAs(const QString &path)
{
    const bool file = isFile();
    m_task->perform(
        file ? QFileInfo(filePath()).size() : text().size(),
        QCoreApplication::translate("Quorvix", "Saving…"),
        [file, source = file ? filePath() : text(), to = QDir::fromNativeSeparators(path)](auto *progress) {
            return replaceFile(to, [&](QIODevice &target) {
                return file ? copyFile(source, target, progress) : copyText(source, target, progress);
            });
        },
        [this](const auto &error) { Q_EMIT saved(error ? error->localizedDescription : QString()); });
}

bool UIActivityViewController::open()
{
    return isFile() && QDesktopServices::openUrl(fileUrl(m_items.constFirst()));
}

bool UIActivityViewController::showInFolder()
{
    return isFile() && QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(filePath()).absolutePath()));
}

} // namespace Quorvix
