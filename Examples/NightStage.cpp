#include "Examples/NightStage.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace {

constexpr QSize tablet(1024, 768);

QPalette nightPalette()
{
    QPalette palette(QColor(0x2c, 0x2c, 0x2e), QColor(0x1c, 0x1c, 0x1e));
    palette.setColor(QPalette::Base, Qt::black);
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::white);
    return palette;
}

} // namespace

QList<TourStage::Step> NightStage::steps()
{
    return {
        {"night-catalogue", std::bind_front(&NightStage::nightFalls, this)},
        {"night-product", std::bind_front(&NightStage::productByNight, this)},
        {"night-profile", std::bind_front(&NightStage::profileByNight, this)},
        {"night-inspector", std::bind_front(&NightStage::inspectorByNight, this)},
        {"night-details", std::bind_front(&NightStage::detailsByNight, this)},
        {"wide-catalogue", std::bind_front(&NightStage::wideCatalogue, this)},
        {"wide-product", std::bind_front(&NightStage::wideProduct, this)},
        {"wide-inspector", std::bind_front(&NightStage::wideInspector, this)},
        {"wide-day-inspector", std::bind_front(&NightStage::wideByDay, this)},
    };
}

bool NightStage::nightFalls()
{
    QGuiApplication::setPalette(nightPalette());
    return robot().click(name("shopTab")) && robot().waitFor(name("productBackButton")) &&
           robot().click(name("productBackButton")) && robot().waitFor(name("productCard-fjord-vase"));
}

bool NightStage::productByNight()
{
    return robot().click(name("productCard-tide-mug")) && robot().waitFor(name("addToCartButton"));
}

bool NightStage::profileByNight()
{
    return robot().click(name("profileTab")) && robot().scroll(name("profilePage"), -3000) &&
           robot().waitFor(name("profileName")) && robot().click(name("diagnostic-redirect")) &&
           robot().click(name("diagnostic-notFound")) && robot().click(name("diagnostic-drop"));
}

bool NightStage::inspectorByNight()
{
    return robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().waitFor(name("QXRequestRow"));
}

bool NightStage::detailsByNight()
{
    return robot().click(name("QXRequestRow")) && robot().waitFor(name("QXRequestDetailsView"));
}

bool NightStage::wideCatalogue()
{
    return robot().click(name("QXBackButton")) && robot().waitUntilGone(name("QXRequestDetailsView")) &&
           robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView")) &&
           robot().resize(tablet) && robot().click(name("shopTab")) &&
           robot().click(name("productBackButton")) && robot().waitFor(name("productCard-fjord-vase"));
}

bool NightStage::wideProduct()
{
    return robot().click(name("productCard-alder-chair")) && robot().waitFor(name("addToCartButton"));
}

bool NightStage::wideInspector()
{
    return robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().waitFor(name("QXRequestRow"));
}

bool NightStage::wideByDay()
{
    QGuiApplication::setPalette(QPalette());
    return robot().waitFor(name("QXRequestListView"));
}
