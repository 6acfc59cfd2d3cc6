#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtQml/QQmlComponent>
#include <QtQuick/QQuickItem>

#include <memory>
#include <vector>

class QXFrost;

/// Shows the host's content beneath this item as if through frosted glass. Main thread only.
///
/// The backdrop creates a pane for each host item beneath it. The source of a pane, a ShaderEffectSource,
/// renders a small picture of that item when refresh() is called and at intervals while the host renders.
/// The inspector's QML engine never sees the host's items, because it could delete them as garbage.
class QXBackdrop : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// Creates a pane: a QXFrost with its source.
    Q_PROPERTY(QQmlComponent *pane MEMBER m_component REQUIRED)
    /// Whether there is at least one pane.
    Q_PROPERTY(bool isFrosted READ isFrosted NOTIFY isFrostedChanged)

public:
    explicit QXBackdrop(QQuickItem *parent = nullptr);
    ~QXBackdrop() override;

    [[nodiscard]] bool isFrosted() const noexcept { return m_isFrosted; }
    /// The host's items beneath the backdrop, from the lowest to the uppermost.
    [[nodiscard]] QList<QQuickItem *> hostItems() const;

    /// Takes new pictures in a later turn of the event loop.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void isFrostedChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    struct Pane
    {
        QPointer<QQuickItem> item;
        std::unique_ptr<QXFrost> frost;
    };

    void watch(QQuickWindow *window);
    void handleFrame();
    void takePictures();
    void show(const QList<QQuickItem *> &items);
    void updateFrosted();
    [[nodiscard]] std::unique_ptr<QXFrost> makePane();

    QPointer<QQmlComponent> m_component;
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_content;
    std::vector<Pane> m_panes;
    QTimer m_timer;
    QElapsedTimer m_sincePictures;
    bool m_isFrosted = false;
    /// Whether the next frame shows new pictures.
    bool m_hasNewPictures = false;
    /// Whether the next frame that is reported to the main thread shows new pictures.
    bool m_isOwnFrame = false;
};
