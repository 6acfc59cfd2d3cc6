#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtQml/qqmlregistration.h>

namespace Quorvix {

/// What the share sheet shows of the things to be shared, and what it can do with them. Main thread only.
///
/// The items are texts and file URLs. The sheet presents the first; the actions concern all of them.
class UIActivityViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        QVariantList activityItems READ activityItems WRITE setActivityItems NOTIFY activityItemsChanged)
    Q_PROPERTY(QString title READ title NOTIFY activityItemsChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY activityItemsChanged)
    Q_PROPERTY(QString previewText READ previewText NOTIFY activityItemsChanged)
    Q_PROPERTY(bool isFile READ isFile NOTIFY activityItemsChanged)
    Q_PROPERTY(QString suggestedPath READ suggestedPath NOTIFY activityItemsChanged)

public:
    explicit UIActivityViewController(QObject *parent = nullptr);
    ~UIActivityViewController() override;

    [[nodiscard]] const QVariantList &activityItems() const { return m_items; }
    void setActivityItems(const QVariantList &items);

    /// The file's name, or the first line of the text.
    [[nodiscard]] QString title() const;
    /// The kind and size of what is shared.
    [[nodiscard]] QString subtitle() const;
    /// The beginning of the text or of the file's text; empty for a file that holds none.
    [[nodiscard]] QString previewText() const;
    /// Whether the items are files, which can be opened and shown in their folder.
    [[nodiscard]] bool isFile() const;
    /// Where "Save As" proposes to save: a new name in the user's folder for downloads.
    [[nodiscard]] QString suggestedPath() const;

    /// Places the texts on the clipboard; of files, the URLs and the paths.
    Q_INVOKABLE void copy();
    /// Saves the first item under @p path. Returns why it failed, or an empty text.
    Q_INVOKABLE QString saveAs(const QString &path);
    /// Opens the file with the user's application for it; false when the platform knows none.
    Q_INVOKABLE bool open();
    /// Shows the file's folder; false when the platform cannot.
    Q_INVOKABLE bool showInFolder();

Q_SIGNALS:
    void activityItemsChanged();

private:
    [[nodiscard]] QString filePath() const;
    [[nodiscard]] QString text() const;

    QVariantList m_items;
};

} // namespace Quorvix
