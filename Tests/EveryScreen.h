#pragma once

#include "Tests/ScreenTest.h"

#include "Quorvix/QXOverlay.h"

/// A test whose rows are the screens of the inspector, and what comes up over them.
class EveryScreen : public ScreenTest
{
protected:
    using Open = std::function<void()>;

    /// Records an exchange whose Authorization can be decoded.
    static void record(Quorvix::URLRequest request)
    {
        auto headers = request.allHTTPHeaderFields.value_or(Quorvix::HTTPHeaderFields());
        headers[QStringLiteral("Authorization")] =
            QString::fromLatin1(("[1" + QByteArray(",2").repeated(60) + "]").toBase64());
        request.allHTTPHeaderFields = headers;
        QXRequestRecorder::shared().record(QStringLiteral("id"), request);
        Exchanges::complete(QStringLiteral("id"), 200, "{\"a\":1}");
    }

    void openList()
    {
        click("QXFloatingButton");
        QVERIFY(waitFor("QXRequestRow"));
    }

    void openDetails()
    {
        click("QXRequestRow");
        QVERIFY(waitFor("QXRequestDetailsView"));
    }

    void openMenu()
    {
        openDetails();
        const QQuickItem *const row = find("QXValueRow", "label", QStringLiteral("Authorization"));
        QVERIFY(row);
        click(row->mapToScene({30, 20}).toPoint(), Qt::RightButton);
    }

    // Rows that begin where the list is open.
    void everyScreen()
    {
        pages();
        popups();
        heldResponse();
    }

    void pages()
    {
        QTest::addColumn<Open>("open");
        QTest::addColumn<QByteArray>("opened");
        QTest::addColumn<QByteArray>("focused"); // empty where the screen selects
        const Open list = [] {
        };
        const Open details = [this] {
            openDetails();
        };
        const Open tree = [this] {
            openDetails();
            find("QXLogTreeButton")->forceActiveFocus();
            press(Qt::Key_Return);
        };
        const Open shareMenu = through(details, "QXShareButton");
        row("list", list, "QXRequestListView");
        row("breakpoints", through(list, "QXBreakpointsButton"), "QXBreakpointsListView");
        row("details", details, "QXRequestDetailsView");
        row("share menu", shareMenu, "QXConfirmationDialog");
        row("share sheet", through(shareMenu, "QXShareCurl"), "QXActivitySheet");
        row("tree", tree, "QXLogTreeView");
    }

    void popups()
    {
        const Open emptyList = [this] {
            QXRequestRecorder::shared().clear();
            click("QXExportButton");
        };
        const Open menu = [this] {
            openMenu();
        };
        row("list's alert", emptyList, "QXAlert");
        row("menu", menu, "QXContextMenu");
        row("alert", through(menu, "QXCopyValueItem"), "QXAlert");
        row("payload", through(menu, "QXDecodeValueItem"), "QXDecodedPayloadSheet");
    }

    void heldResponse()
    {
        const Open held = [this] {
            QVERIFY(hold(
                "{}", [](auto...) {}, m_heldPath));
        };
        row("held response", held, "QXBreakpointEditorView");
    }

    static void row(const char *name, const Open &open, const char *opened, const char *focused = "")
    {
        QTest::newRow(name) << open << QByteArray(opened) << QByteArray(focused);
    }

    /// Opens something, and then what an item of it opens.
    [[nodiscard]] Open through(const Open &before, const char *item)
    {
        return [=, this] {
            before();
            click(item);
        };
    }

    /// Opens what a row is about.
    void open()
    {
        QFETCH(const Open, open);
        QFETCH(const QByteArray, opened);
        open();
        QVERIFY(waitFor(opened));
    }

    /// The path of the response that is held.
    QString m_heldPath;
};
