#pragma once

#include "Examples/TourStage.h"

/// Opens single exchanges: their details, their trees, their decoded payloads, and every way to share them.
/// Begins and ends in the list of requests.
class DetailsStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    /// Chooses an action of the share menu and waits for the share sheet.
    bool share(const char *action);
    bool closeShareSheet();

    bool profileOpens();
    bool headerHasMenu();
    bool tokenIsDecoded();
    bool valueIsCopied();
    bool shareMenuOpens();
    bool treeOpens();
    bool treeHasMenu();
    bool treeIsShared();
    bool rowIsDecoded();
    bool groupsUnfold();
    bool largeBodyOpens();
    bool largeBodyScrolls();
    bool largeTreeOpens();
    bool binaryBodyOpens();
    bool bytesAreNoTree();
    bool failureOpens();
    bool detailsClose();
};
