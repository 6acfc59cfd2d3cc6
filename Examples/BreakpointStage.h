#pragma once

#include "Examples/TourStage.h"

/// Turns a breakpoint on, edits the held exchanges, checks that the store shows the edits, and turns it off.
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
