#pragma once

#include "Controls/QXBackgroundTask.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>

namespace Quorvix {

/// The model of the share sheet: it describes the shared items and performs the actions. Main thread only.
///
/// The items are texts and file URLs. The sheet shows the first one; the actions apply to all of them.
class UIActivityViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        QVariantList activityItems READ activityItems WRITE setActivityItems NOTIFY activityItemsChanged)
    /// What is shared, for people. The file's name, or the first line of the text, if nothing else is set.
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY activityItemsChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY subtitleChanged)
    Q_PROPERTY(QStringList previewLines READ previewLines NOTIFY activityItemsChanged)
    Q_PROPERTY(QString previewText READ previewText NOTIFY activityItemsChanged)
    Q_PROPERTY(bool isFile READ isFile NOTIFY activityItemsChanged)
    Q_PROPERTY(QString suggestedPath READ suggestedPath NOTIFY activityItemsChanged)
    /// The task that saves a large item.
    Q_PROPERTY(QXBackgroundTask *task READ task CONSTANT)

public:
    explicit UIActivityViewController(QObject *parent = nullptr);
    ~UIActivityViewController() override;

    [[nodiscard]] const QVariantList &activityItems() const { return m_items; }
    void setActivityItems(const QVariantList &items);

    [[nodiscard]] QString title() const;
    void setTitle(const QString &title);
    /// The file's name, and the size of the first item. The size of a long text follows later.
    [[nodiscard]] QString subtitle() const;
    /// The first lines of the text or of the file's text, each shortened; empty for a file that is not text.
    [[nodiscard]] QStringList previewLines() const;
    /// previewLines() in one text.
    [[nodiscard]] QString previewText() const { return previewLines().join(u'\n'); }
    /// Whether the items are files, which can be opened and shown in their folder.
    [[nodiscard]] bool isFile() const;
    /// The path that "Save As" suggests: an unused name in the user's download folder.
    [[nodiscard]] QString suggestedPath() const;
    [[nodiscard]] QXBackgroundTask *task() const { return m_task; }

    /// Copies the texts to the clipboard; for files, the URLs and the paths.
    Q_INVOKABLE void copy();
    /// Saves the first item to @p path and emits saved(), for a large item later. A task that is cancelled
    /// leaves what was there before and emits nothing.
    Q_INVOKABLE void saveAs(const QString &path);
    /// Opens the file with the user's default application; false when the platform has none.
    Q_INVOKABLE bool open();
    /// Opens the file's folder; false when the platform cannot.
    Q_INVOKABLE bool showInFolder();

Q_SIGNALS:
    void activityItemsChanged();
    void subtitleChanged();
    /// With the reason of a failure, or an empty text.
    void saved(const QString &failure);

private:
    void measureText();
    [[nodiscard]] QString filePath() const;
    [[nodiscard]] QString fileName() const;
    [[nodiscard]] QString text() const;

    QVariantList m_items;
    QString m_title;
    /// The number of bytes of the text as UTF-8; absent while it is not known.
    std::optional<qsizetype> m_textSize;
    /// Replaced when the items change. A text that is measured has a weak pointer to it.
    std::shared_ptr<const bool> m_itemsToken;
    /// Owned by this object as its QObject parent.
    QXBackgroundTask *m_task = new QXBackgroundTask(this);
};

} // namespace Quorvix
