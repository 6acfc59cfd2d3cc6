#include "Controls/UIActivityViewController.h"

#include "Platform/ReplaceFile.h"
#include "Platform/ShortText.h"
#include "Platform/WriteAll.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QMimeData>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringDecoder>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>

#include <memory>

namespace Quorvix {

namespace {

/// The length of the preview, in bytes.
constexpr qsizetype previewLength = 4096;
constexpr qsizetype titleLength = 80;

/// The text at the start of @p bytes, without a character that is cut off at the end; empty when the bytes
/// are not text.
QString leadingText(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    return decoder.hasError() || text.contains(QChar::Null) ? QString() : text;
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

std::optional<NSError> copyFile(const QString &path, QIODevice &target)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, source.errorString()};
    constexpr qint64 block = 1 << 20;
    while (!source.atEnd()) {
        const QByteArray bytes = source.read(block);
        if (source.error() != QFileDevice::NoError)
            return NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, source.errorString()};
        if (auto error = writeAll(target, bytes))
            return error;
    }
    return std::nullopt;
}

} // namespace

UIActivityViewController::UIActivityViewController(QObject *parent) : QObject(parent) {}

UIActivityViewController::~UIActivityViewController() = default;

void UIActivityViewController::setActivityItems(const QVariantList &items)
{
    m_items = items;
    Q_EMIT activityItemsChanged();
}

bool UIActivityViewController::isFile() const
{
    return !filePath().isEmpty();
}

QString UIActivityViewController::filePath() const
{
    return m_items.isEmpty() ? QString() : fileUrl(m_items.constFirst()).toLocalFile();
}

QString UIActivityViewController::text() const
{
    return m_items.isEmpty() || isFile() ? QString() : m_items.constFirst().toString();
}

QString UIActivityViewController::title() const
{
    if (isFile())
        return QFileInfo(filePath()).fileName();
    return ShortText::beginning(text().left(previewLength).trimmed().section(u'\n', 0, 0), titleLength);
}

QString UIActivityViewController::subtitle() const
{
    const QLocale locale;
    if (!isFile())
        return QCoreApplication::translate("Quorvix", "Text") + QStringLiteral(" · ") +
               locale.formattedDataSize(text().toUtf8().size());
    const QFileInfo info(filePath());
    return info.suffix().toUpper() + QStringLiteral(" · ") + locale.formattedDataSize(info.size());
}

QString UIActivityViewController::previewText() const
{
    if (!isFile())
        return text().left(previewLength);
    QFile file(filePath());
    return file.open(QIODevice::ReadOnly) ? leadingText(file.read(previewLength)) : QString();
}

QString UIActivityViewController::suggestedPath() const
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (!QFileInfo(folder).isDir())
        folder = QDir::homePath();
    const QString name = isFile() ? title() : QStringLiteral("Quorvix.txt");
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
    mimeData->setText(texts.join(u'\n'));
    if (!urls.isEmpty())
        mimeData->setUrls(urls);
    QGuiApplication::clipboard()->setMimeData(mimeData.release());
}

QString UIActivityViewController::saveAs(const QString &path)
{
    const auto error = replaceFile(QDir::fromNativeSeparators(path), [this](QIODevice &target) {
        return isFile() ? copyFile(filePath(), target) : writeAll(target, text().toUtf8());
    });
    return error ? error->localizedDescription : QString();
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
