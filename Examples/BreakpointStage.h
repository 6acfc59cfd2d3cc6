#pragma once

#include "Examples/TourStage.h"

/// A breakpoint from its switch to its end: what it holds is edited, and the store shows the edit.
/// Begins and ends in the list of requests.
class BreakpointStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool breakpointIsSet();
    bool breakpointIsListed();
    bool responseIsHeld();
    bool responseIsEdited();
    bool storeShowsTheEdit();
    bool breakpointIsDeleted();
    bool breakpointsClose();
};
