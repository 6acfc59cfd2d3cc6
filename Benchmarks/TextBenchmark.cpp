// Shows and edits bodies of several megabytes; for comparison, the time that QTextDocument takes to lay them
// out.

#include "Text/QXTextDocument.h"
#include "Text/QXTextEditor.h"
#include "Text/QXTextRows.h"
#include "Text/QXTextView.h"

#include "Platform/UTF8Text.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <QtGui/QTextDocument>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using Contest::milliseconds;
using Contest::require;

namespace {

constexpr QSize screen(1024, 768);
constexpr qsizetype bodySize = 10'000'000;
constexpr qsizetype lineSize = 5'000'000;
constexpr int columnsOfAPhone = 42;

QByteArray jsonBody()
{
    QByteArray body = "{\n  \"items\": [\n";
    for (int i = 0; body.size() < bodySize; ++i) {
        const QByteArray number = QByteArray::number(i);
        body += "    {\n      \"id\": " + number + ",\n      \"title\": \"The title of item " + number +
                "\",\n      \"summary\": \"Some text that a person would read, of a usual length.\",\n"
                "      \"on\": true\n    },\n";
    }
    body.truncate(bodySize);
    return body;
}

QByteArray oneLine()
{
    QByteArray line = jsonBody().left(lineSize);
    line.replace('\n', ' ');
    return line;
}

QFont bodyFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(13);
    return font;
}

/// A window in the size of a tablet that shows only a view.
template<typename View>
struct Stage
{
    Stage()
    {
        window.resize(screen);
        window.show();
        view.setParentItem(window.contentItem());
        view.setSize(screen);
        view.setFont(bodyFont());
        QCoreApplication::processEvents();
    }

    QQuickWindow window;
    View view;
};

/// Lays a text out as Qt does, with the same row breaks.
void layOut(const QString &text)
{
    QTextDocument document;
    document.setDefaultFont(bodyFont());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAnywhere);
    document.setDefaultTextOption(option);
    document.setTextWidth(screen.width());
    document.setPlainText(text);
    require(document.size().height() > screen.height(), "Qt's text");
}

void report(const QByteArray &title, const char *what, double time)
{
    Report::add({.metric = (title + what).constData(), .place = "main thread", .unit = "ms", .ours = time});
}

void printUsual(const char *what, const std::function<void()> &action)
{
    std::vector<double> taken(41);
    std::generate(taken.begin(), taken.end(), [&] { return milliseconds(action); });
    Contest::printWaits(what, taken);
}

void compareLayout(const QByteArray &title, const QString &text)
{
    // Of Qt's layout only a tenth, because the whole takes seconds.
    constexpr int share = 10;
    const QString part = text.left(text.size() / share);
    const int columns = int(screen.width() / QFontMetricsF(bodyFont()).horizontalAdvance(u'0'));
    const auto breakText = [&](int width) {
        QXTextRows rows;
        rows.breakText(text, width);
        require(rows.count() > text.size() / width, "all rows");
    };
    const std::vector<double> times = Contest::medians({{"on a tablet",
                                                         [&] {
                                                             breakText(columns);
                                                         }},
                                                        {"on a phone",
                                                         [&] {
                                                             breakText(columnsOfAPhone);
                                                         }},
                                                        {"QTextDocument", [&] {
                                                             layOut(part);
                                                         }}});
    Report::add({.metric = (title + "rows broken for a tablet").constData(),
                 .place = "one thread",
                 .unit = "ms",
                 .ours = times[0],
                 .peer = Report::Other{"QTextDocument, ten times a tenth", share * times[2]}});
    Report::add({.metric = (title + "rows broken for a phone").constData(),
                 .place = "one thread",
                 .unit = "ms",
                 .ours = times[1]});
}

void measureShowing(const QByteArray &title, const QByteArray &body)
{
    Stage<QXTextView> stage;
    const auto paint = [&] {
        require(!stage.window.grabWindow().isNull(), "a frame");
    };
    report(title, "from the bytes to the first frame", milliseconds([&] {
               const auto text = Quorvix::UTF8Text::exact(body);
               stage.view.setDocument(text ? new QXTextDocument(*text, &stage.view)
                                           : new QXTextDocument(body, &stage.view));
               paint();
           }));
    const double distance = stage.view.contentHeight() / 50;
    int step = 0;
    printUsual("a frame after a jump", [&] {
        stage.view.setScrollOffset(++step * distance);
        paint();
    });
    printUsual("a frame while scrolling", [&] {
        stage.view.setScrollOffset(stage.view.scrollOffset() - 40);
        paint();
    });
    printUsual("of that, the copy for this program", paint);
}

void measureEditing(const QByteArray &title, const QString &text)
{
    Stage<QXTextEditor> stage;
    stage.view.setText(text);
    stage.window.grabWindow();
    QXTextSelection middle;
    middle.set(text.size() / 2, text.size() / 2);
    stage.view.setSelection(middle);
    report(title, "first keystroke, which copies a shared text",
           milliseconds([&] { stage.view.insert(u"a"_s); }));
    printUsual("another keystroke", [&] { stage.view.insert(u"a"_s); });
    printUsual("a new line, with its frame", [&] {
        stage.view.insert(u"\n"_s);
        stage.window.grabWindow();
    });
}

void measureText(const QByteArray &title, const QByteArray &body)
{
    std::printf("%s\n", title.constData());
    compareLayout(title, QString::fromUtf8(body));
    measureShowing(title, body);
    measureEditing(title, QString::fromUtf8(body));
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    measureText("10 MB of JSON in lines: ", jsonBody());
    measureText("5 MB of JSON in one line: ", oneLine());
    measureShowing("10 MB that are no text: ", QByteArray(bodySize, '\xff'));
    return 0;
}
