#include "Examples/NightStage.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace {

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
        {"night-menu", std::bind_front(&NightStage::menuByNight, this)},
        {"night-share-menu", std::bind_front(&NightStage::shareMenuByNight, this)},
        {"night-body", std::bind_front(&NightStage::bodyByNight, this)},
        {"night-tree", std::bind_front(&NightStage::treeByNight, this)},
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
    return openExchange("tide-mug") && robot().click(name("QXBreakpointSwitch"));
}

bool NightStage::menuByNight()
{
    return robot().click(name("QXBreakpointSwitch")) && robot().rightClick(name("QXValueRow:Method")) &&
           robot().waitFor(name("QXCopyValueItem"));
}

bool NightStage::shareMenuByNight()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXContextMenuCard")) &&
           robot().click(name("QXShareButton")) && robot().waitFor(name("QXShareRawDetails"));
}

bool NightStage::bodyByNight()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXShareRawDetails")) &&
           robot().show(name("QXLogTreeButton")) && robot().scroll(name("QXRequestDetailsPage"), 1200);
}

bool NightStage::treeByNight()
{
    return openTree() && robot().click(name("QXLogTreeRow"));
}
