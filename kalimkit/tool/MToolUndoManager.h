#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/Feature.h"

namespace kalim {

// One tool's history: a list of states (not of transitions), oldest first, and the index of the one
// in force. Index 0 is the tool as it was first recorded; it cannot be stepped back from, so
// undoing the tool's creation is the business of the canvas's own stack.
class KALIM_API MToolUndoManager {
public:
    // The index while there is no snapshot.
    static constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();

    // Appends a snapshot and steps the index by one; null is ignored. What lies beyond the index is
    // deliberately not cut here: callers cut it with resetRedo() first, or the index would name an
    // old entry.
    void setFeature(FeatureRef feature);
    // The snapshot in force; null when there is none.
    FeatureRef feature() const;

    bool canUndo() const;
    bool canRedo() const;
    // Move the index only; whether they could.
    bool undo();
    bool redo();
    // Forgets the snapshots beyond the index.
    void resetRedo();
    void reset();

    const std::vector<FeatureRef>& featureList() const { return _featureList; }
    std::int64_t curIndex() const { return _curIndex; }

private:
    std::vector<FeatureRef> _featureList;
    std::int64_t _curIndex = notFound;
};

}  // namespace kalim
