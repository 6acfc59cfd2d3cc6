#pragma once

#include "Tests/ScreenTest.h"

#include "Text/QXTextDocument.h"
#include "Text/QXTextModule.h"
#include "Text/QXTextView.h"

#include "Controls/QXControlsModule.h"

/// A test of a text in a page that scrolls.
class TextTest : public ScreenTest
{
protected:
    TextTest()
    {
        linkQXControlsModule();
        linkQXTextModule();
        m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    }

    void init() override { startAnew(); }
    void cleanup() override
    {
        m_window.reset();
        m_document.reset();
    }

    /// Lines with numbers, each 20 units long with its line end.
    static QString numberedLines(int count)
    {
        QString text;
        text.reserve(qsizetype(count) * 20);
        for (int i = 0; i < count; ++i)
            text += QStringLiteral("line %1\n").arg(i, 14, 10, QChar(u'0'));
        return text;
    }

    [[nodiscard]] QQuickItem *page() { return find("page"); }
    [[nodiscard]] QXTextView *view() { return qobject_cast<QXTextView *>(find("QXTextView")); }

    [[nodiscard]] bool open(QXTextDocument *document)
    {
        m_document.reset(document);
        QQmlComponent component(&m_engine);
        component.setData(pageQml, QUrl());
        if (!component.isReady())
            qFatal("%s", qPrintable(component.errorString()));
        m_window.reset(qobject_cast<QQuickWindow *>(component.createWithInitialProperties(
            {{QStringLiteral("document"), QVariant::fromValue(document)}})));
        return waitForActive(*m_window) && QTest::qWaitFor([this] {
                   return view() && view()->contentHeight() > 0 && view()->height() > 0;
               });
    }

    void scrollTo(qreal y)
    {
        page()->setProperty("contentY", y);
        QTRY_VERIFY(qAbs(view()->scrollOffset() - (y - 112)) < 1);
    }

    /// The left edge of a character, in the window.
    [[nodiscard]] QPoint placeOf(qsizetype position)
    {
        const QRectF caret = view()->caretAt(position).translated(0, -view()->scrollOffset());
        return view()->mapToScene(caret.center() + QPointF(1, 0)).toPoint();
    }

    [[nodiscard]] QString copied()
    {
        QGuiApplication::clipboard()->clear();
        press(Qt::Key_C, Qt::ControlModifier);
        return clipboard();
    }

    std::unique_ptr<QXTextDocument> m_document;

private:
    static constexpr char pageQml[] = R"(
import QtQuick
import Quorvix.Controls
import Quorvix.Text

Window {
    id: root

    property QXTextDocument document
    property string requested

    width: 390
    height: 650
    visible: true

    Flickable {
        id: page
        objectName: "page"
        width: parent.width
        height: 600
        contentHeight: column.height
        clip: true

        Column {
            id: column
            width: page.width

            Item { objectName: "above"; width: 1; height: 100 }
            QXTextBlock {
                objectName: "block"
                x: 16
                width: page.width - 32
                page: page
                document: root.document
                focus: true
                onContextMenuRequested: position => root.requested = Math.round(position.x) + "," + Math.round(position.y)
            }
            Item { width: 1; height: 100 }
        }
    }
}
)";

    QQmlEngine m_engine;
};
