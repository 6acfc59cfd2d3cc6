#include "Text/QXTextFinder.h"

#include "Text/QXTextDocument.h"

#include <algorithm>

namespace {

/// About how many units a step searches: it takes some ten milliseconds.
constexpr qsizetype stepLength = 4'000'000;

} // namespace

QXTextFinder::QXTextFinder(QObject *parent) : QXFinder(parent)
{
    connect(this, &QXFinder::textChanged, this, &QXTextFinder::mark);
    connect(this, &QXFinder::marksMatchesChanged, this, &QXTextFinder::mark);
}

void QXTextFinder::add(QXTextView *view)
{
    m_views.emplace_back(view);
    connect(view, &QXTextView::documentChanged, this, &QXTextFinder::searchAgain);
    connect(view, &QObject::destroyed, this, &QXTextFinder::forget);
    searchAgain();
    mark();
}

void QXTextFinder::searchAgain()
{
    if (!text().isEmpty())
        restart();
}

/// Called when a view is destroyed, mostly together with the screen.
void QXTextFinder::forget()
{
    task().cancel();
    std::erase_if(m_views, [](const auto &view) { return view.isNull(); });
    m_places.clear();
    m_searched = 0;
}

void QXTextFinder::mark()
{
    for (const auto &view : m_views) {
        if (view)
            view->setMarkedText(marksMatches() ? text() : QString());
    }
}

void QXTextFinder::begin()
{
    const auto isAbove = [](const QXTextView *view, const QXTextView *other) {
        return view->mapToScene({0, -view->scrollOffset()}).y() <
               other->mapToScene({0, -other->scrollOffset()}).y();
    };
    m_places.clear();
    m_searched = 0;
    for (const auto &view : m_views) {
        if (view && view->document())
            m_places.push_back({view, QXTextMatches(view->document()->content(), text())});
    }
    std::stable_sort(m_places.begin(), m_places.end(),
                     [&](const Place &place, const Place &other) { return isAbove(place.view, other.view); });
    if (text().isEmpty())
        m_searched = m_places.size();
}

void QXTextFinder::searchFurther()
{
    QXTextMatches &matches = m_places[m_searched].matches;
    const qsizetype length = m_places[m_searched].view ? m_places[m_searched].view->document()->length() : 0;
    task().perform(
        length, {}, [matches](QXTaskProgress *progress) { return matches.search(stepLength, progress); },
        [this](const QXTextMatches::Part &part) {
            m_places[m_searched].matches.append(part);
            while (m_searched < m_places.size() && m_places[m_searched].matches.isComplete())
                ++m_searched;
            stepDone();
        });
}

qsizetype QXTextFinder::count() const
{
    qsizetype count = 0;
    for (const Place &place : m_places)
        count += place.matches.count();
    return count;
}

std::pair<const QXTextFinder::Place *, qsizetype> QXTextFinder::placeOf(qsizetype match) const
{
    for (const Place &place : m_places) {
        if (match < place.matches.count())
            return {&place, match};
        match -= place.matches.count();
    }
    return {nullptr, 0};
}

qsizetype QXTextFinder::matchAtCursor() const
{
    const auto find = [this](auto isHere) {
        return std::find_if(m_places.cbegin(), m_places.cend(),
                            [&](const Place &place) { return place.view && isHere(*place.view); });
    };
    const auto selected = find([](const QXTextView &view) { return view.hasSelection(); });
    const auto visible = find([](const QXTextView &view) { return view.height() > 0; });
    const auto here = selected != m_places.cend() ? selected : visible;
    if (here == m_places.cend())
        return 0;
    const QXTextView &view = *here->view;
    qsizetype cursor = 0;
    if (here == selected)
        cursor = view.selection().start();
    else if (view.scrollOffset() > 0)
        cursor = view.positionAt({0, view.rowHeight()});
    qsizetype before = 0;
    for (auto place = m_places.cbegin(); place != here; ++place)
        before += place->matches.count();
    // A match in a later place is the next one, once this place is searched.
    const qsizetype match = here->matches.matchFrom(cursor);
    const bool isKnown = match < here->matches.count() || here->matches.isComplete();
    return isKnown ? before + match : count();
}

bool QXTextFinder::isSelected(qsizetype match) const
{
    const auto [place, number] = placeOf(match);
    if (!place || !place->view)
        return false;
    const QXTextSelection &selection = place->view->selection();
    return selection.length() == place->matches.needleLength() &&
           selection.start() == place->matches.position(number);
}

void QXTextFinder::show(qsizetype match)
{
    const auto [shown, number] = placeOf(match);
    for (const Place &place : m_places) {
        if (place.view && &place != shown)
            place.view->setSelection({});
    }
    if (shown->view)
        shown->view->showRange(shown->matches.position(number), shown->matches.needleLength());
}

bool QXTextFinder::focusMatch()
{
    const auto [place, number] = placeOf(current());
    if (current() < 0 || !place || !place->view)
        return false;
    place->view->takeFocus();
    return true;
}
