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

/// Shows what the host has beneath this item as through frosted glass. Main thread only.
///
/// For each item of the host that lies there it makes a pane whose source, a ShaderEffectSource, takes a
/// small picture of that item: anew when asked, and now and then while the host renders. The host's items are
/// never handed to the inspector's engine, which might otherwise think that they are its own to collect.
class QXBackdrop : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// Makes a pane: a QXFrost with its source.
    Q_PROPERTY(QQmlComponent *pane MEMBER m_component REQUIRED)
    /// Whether there is a pane to look through.
    Q_PROPERTY(bool isFrosted READ isFrosted NOTIFY isFrostedChanged)

public:
    explicit QXBackdrop(QQuickItem *parent = nullptr);
    ~QXBackdrop() override;

    [[nodiscard]] bool isFrosted() const noexcept { return m_isFrosted; }
    /// The host's items beneath it, from the lowest to the uppermost.
    [[nodiscard]] QList<QQuickItem *> hostItems() const;

    /// Takes new pictures as soon as what goes on now has ended.
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
    /// Whether the next frame is one that shows new pictures.
    bool m_hasNewPictures = false;
    /// Whether the frame that the host is told of next is that one.
    bool m_isOwnFrame = false;
};
