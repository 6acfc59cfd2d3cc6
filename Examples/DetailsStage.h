#pragma once

#include "Examples/TourStage.h"

/// Opens single exchanges: their details, their trees, their decoded payloads, and every way to share them.
/// Begins in the share sheet of the list of requests, and ends in that list.
class DetailsStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    /// Chooses an action of the share menu and waits for the share sheet.
    bool share(const char *action);
    bool closeShareSheet();
    /// Opens the find bar and waits until it has counted the matches.
    bool find(const char *text);

    bool profileOpens();
    bool headerHasMenu();
    bool tokenIsDecoded();
    bool valueIsCopied();
    bool shareMenuOpens();
    bool treeOpens();
    bool treeHasMenu();
    bool treeIsSearched();
    bool treeIsShared();
    bool rowUnfolds();
    bool rowIsDecoded();
    bool groupsUnfold();
    bool largeBodyOpens();
    bool largeBodyScrolls();
    bool largeBodyIsSearched();
    bool largeTreeOpens();
    bool binaryBodyOpens();
    bool bytesAreNoTree();
    bool failureOpens();
    bool detailsClose();
};
