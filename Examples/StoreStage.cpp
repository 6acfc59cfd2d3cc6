#include "Examples/StoreStage.h"

#include <Quorvix/QXRequestRecorder.h>

#include <QtQuick/QQuickItem>

namespace {

using namespace std::chrono_literals;

/// The slowest diagnostics wait for time-outs and for host names that cannot be resolved.
constexpr auto diagnosticsLimit = 120s;

} // namespace

QList<TourStage::Step> StoreStage::steps()
{
    return {
        {"catalogue", std::bind_front(&StoreStage::catalogueLoads, this)},
        {"floating-button-aside", std::bind_front(&StoreStage::buttonMovesAside, this)},
        {"pull-to-refresh", std::bind_front(&StoreStage::pullingAsksAgain, this)},
        {"catalogue-search", std::bind_front(&StoreStage::searchNarrowsCatalogue, this)},
        {"product", std::bind_front(&StoreStage::productOpens, this)},
        {"added-to-cart", std::bind_front(&StoreStage::productGoesToCart, this)},
        {"cart", std::bind_front(&StoreStage::cartShowsIt, this)},
        {"cart-line-removed", std::bind_front(&StoreStage::cartLineGoes, this)},
        {"sign-in-refused", std::bind_front(&StoreStage::wrongPasswordIsRefused, this)},
        {"profile", std::bind_front(&StoreStage::rightPasswordOpensProfile, this)},
        {"diagnostics-run", std::bind_front(&StoreStage::diagnosticsRun, this)},
        {"diagnostics-outcomes", std::bind_front(&StoreStage::diagnosticsShowOutcomes, this)},
    };
}

bool StoreStage::catalogueLoads()
{
    return robot().resize(phone) && robot().waitFor(name("productCard-fjord-vase")) &&
           robot().waitFor(name("productCard-tide-mug")) &&
           robot().waitUntil([] { return captured(name("/images/tide-mug.png"), 200); },
                             QStringLiteral("the pictures were not captured"));
}

bool StoreStage::buttonMovesAside()
{
    const QQuickItem *const button = robot().find(name("QXFloatingButton"));
    if (!robot().check(button, "no floating button"))
        return false;
    const QPointF before = button->mapToScene({});
    return robot().drag(name("QXFloatingButton"), {290, -120}) &&
           robot().waitUntil([&] { return button->mapToScene({}).x() > before.x() + 200; },
                             QStringLiteral("the floating button did not follow"));
}

bool StoreStage::pullingAsksAgain()
{
    return robot().drag(name("catalogueGrid"), {0, 300}) &&
           robot().waitUntil([] { return captured(name("/api/v1/products"), 304); },
                             QStringLiteral("no 304 was captured"));
}

bool StoreStage::searchNarrowsCatalogue()
{
    return robot().type(name("storeSearchField"), QStringLiteral("lumen")) &&
           robot().waitUntilGone(name("productCard-fjord-vase")) &&
           robot().waitFor(name("productCard-ember-pendant"));
}

bool StoreStage::productOpens()
{
    return robot().erase(name("storeSearchField")) && robot().waitFor(name("productCard-fjord-vase")) &&
           robot().click(name("productCard-fjord-vase")) && robot().waitFor(name("addToCartButton")) &&
           robot().check(robot().text(name("productName")) == QStringLiteral("Fjord Vase"),
                         "another product opened");
}

bool StoreStage::productGoesToCart()
{
    return robot().click(name("addToCartButton")) &&
           robot().waitUntil([] { return captured(name("/api/v1/cart"), 201); },
                             QStringLiteral("no 201 was captured")) &&
           robot().waitFor(name("storeNotice"));
}

bool StoreStage::cartShowsIt()
{
    return robot().click(name("productBackButton")) && robot().waitUntilGone(name("addToCartButton")) &&
           robot().click(name("productCard-halo-lamp")) && robot().click(name("addToCartButton")) &&
           robot().click(name("cartTab")) && robot().waitFor(name("cartRemove-fjord-vase")) &&
           robot().waitFor(name("cartRemove-halo-lamp"));
}

bool StoreStage::cartLineGoes()
{
    return robot().click(name("cartRemove-halo-lamp")) &&
           robot().waitUntilGone(name("cartRemove-halo-lamp")) &&
           robot().check(captured(name("/api/v1/cart/halo-lamp"), 204), "no 204 was captured") &&
           robot().check(robot().text(name("cartTotal")).contains(QStringLiteral("69.00")),
                         "the total is wrong");
}

bool StoreStage::wrongPasswordIsRefused()
{
    return robot().click(name("profileTab")) &&
           robot().type(name("emailField"), QStringLiteral("maeve@store.example")) &&
           robot().type(name("passwordField"), QStringLiteral("let me in")) &&
           robot().click(name("signInButton")) && robot().waitFor(name("signInError")) &&
           robot().check(captured(name("/api/v1/session"), 401), "no 401 was captured");
}

bool StoreStage::rightPasswordOpensProfile()
{
    return robot().erase(name("passwordField")) &&
           robot().type(name("passwordField"), QStringLiteral("open sesame")) &&
           robot().click(name("signInButton")) && robot().waitFor(name("profileName")) &&
           robot().check(captured(name("/api/v1/profile"), 200), "the profile was not captured");
}

bool StoreStage::diagnosticsRun()
{
    if (!robot().click(name("runAllButton")))
        return false;
    const QQuickItem *const button = robot().find(name("runAllButton"));
    // The last call has a text from its start on, and the button is enabled when the last call has ended.
    return robot().waitUntil(
        [&] { return !robot().text(name("diagnosticResult-unknownHost")).isEmpty() && button->isEnabled(); },
        QStringLiteral("some diagnostics did not end"), diagnosticsLimit);
}

bool StoreStage::diagnosticsShowOutcomes()
{
    struct Outcome
    {
        const char *key;
        const char *begin;
    };
    static constexpr Outcome outcomes[] = {
        {"notFound", "404"}, {"serverError", "500"}, {"unauthorized", "401"}, {"notModified", "304"},
        {"redirect", "200"}, {"slow", "200"},        {"gzip", "200"},         {"export", "200"},
        {"binary", "200"},   {"cookies", "200"},     {"form", "200"},         {"put", "200"},
        {"patch", "200"},
    };
    for (const Outcome &outcome : outcomes) {
        const QString result = robot().text(name("diagnosticResult-") + name(outcome.key));
        if (!robot().check(result.startsWith(name(outcome.begin)), outcome.key))
            return false;
    }
    for (const char *const path : {"/drop", "/drop-midway", "/redirect-loop"}) {
        const bool failed = !QXRequestRecorder::shared()
                                 .findRequests([path](const QXRequestTrace &trace) {
                                     return trace.url && trace.url->path() == name(path) && trace.error;
                                 })
                                 .isEmpty();
        if (!robot().check(failed, path))
            return false;
    }
    return robot().scroll(name("profilePage"), 700);
}
