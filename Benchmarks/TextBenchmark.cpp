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

namespace {

constexpr QSize screen(1024, 768);
constexpr qsizetype bodySize = 10'000'000;
constexpr qsizetype lineSize = 5'000'000;

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

/// The time of the fastest of several runs, in milliseconds.
double fastest(int runs, const std::function<void()> &action)
{
    double best = milliseconds(action);
    for (int run = 1; run < runs; ++run)
        best = std::min(best, milliseconds(action));
    return best;
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

/// Measures how long Qt takes to lay out a tenth of the text with the same row breaks. The caller multiplies
/// the time by ten, because the whole text takes too long.
double peerLayout(const QString &text)
{
    constexpr int share = 10;
    const QString part = text.left(text.size() / share);
    return share * milliseconds([&] {
               QTextDocument document;
               document.setDefaultFont(bodyFont());
               QTextOption option;
               option.setWrapMode(QTextOption::WrapAnywhere);
               document.setDefaultTextOption(option);
               document.setTextWidth(screen.width());
               document.setPlainText(part);
               if (document.size().height() < screen.height())
                   std::abort();
           });
}

void print(const char *what, double time)
{
    Report::add({.metric = what, .place = "main thread", .unit = "ms", .ours = time});
}

void printUsual(const char *what, const std::function<void()> &action)
{
    std::vector<double> taken(41);
    std::generate(taken.begin(), taken.end(), [&] { return milliseconds(action); });
    Contest::printWaits(what, taken);
}

void compareLayout(const QString &text)
{
    const int columns = int(screen.width() / QFontMetricsF(bodyFont()).horizontalAdvance(u'0'));
    QXTextRows rows;
    const double breaking = fastest(5, [&] { rows.breakText(text, columns); });
    const double peer = peerLayout(text);
    Report::add({.metric = "breaking all rows, on a tablet",
                 .place = "one thread",
                 .unit = "ms",
                 .ours = breaking,
                 .peer = Report::Other{"QTextDocument, ten times a tenth", peer}});
    Report::add({.metric = "breaking all rows, on a phone",
                 .place = "one thread",
                 .unit = "ms",
                 .ours = fastest(5, [&] { rows.breakText(text, 42); })});
}

void measureShowing(const QByteArray &body)
{
    Stage<QXTextView> stage;
    const auto paint = [&] {
        if (stage.window.grabWindow().isNull())
            std::abort();
    };
    print("from the bytes to the first frame", milliseconds([&] {
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

void measureEditing(const QString &text)
{
    Stage<QXTextEditor> stage;
    stage.view.setText(text);
    stage.window.grabWindow();
    QXTextSelection middle;
    middle.set(text.size() / 2, text.size() / 2);
    stage.view.setSelection(middle);
    print("first keystroke, which copies a shared text", milliseconds([&] { stage.view.insert(u"a"_s); }));
    printUsual("another keystroke", [&] { stage.view.insert(u"a"_s); });
    printUsual("a new line, with its frame", [&] {
        stage.view.insert(u"\n"_s);
        stage.window.grabWindow();
    });
}

void measureText(const char *title, const QByteArray &body)
{
    std::printf("%s, %.0f MB\n", title, double(body.size()) / 1e6);
    compareLayout(QString::fromUtf8(body));
    measureShowing(body);
    measureEditing(QString::fromUtf8(body));
    std::printf("\n");
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    measureText("JSON in lines", jsonBody());
    measureText("JSON in one line", oneLine());
    std::printf("Bytes that are no text, %.0f MB\n", double(bodySize) / 1e6);
    measureShowing(QByteArray(bodySize, '\xff'));
    return 0;
}
