#include "kalimkit/tool/MToolUndoManager.h"

#include <utility>

namespace kalim {

void MToolUndoManager::setFeature(FeatureRef feature) {
    if (!feature) return;
    _curIndex = _curIndex == notFound ? 0 : _curIndex + 1;
    _featureList.push_back(std::move(feature));
}

FeatureRef MToolUndoManager::feature() const {
    return _curIndex == notFound ? nullptr : _featureList[static_cast<std::size_t>(_curIndex)];
}

bool MToolUndoManager::canUndo() const {
    return _curIndex != 0 && _curIndex != notFound;
}

bool MToolUndoManager::canRedo() const {
    return _curIndex != notFound && _curIndex != std::ssize(_featureList) - 1;
}

bool MToolUndoManager::undo() {
    if (!canUndo()) return false;
    --_curIndex;
    return true;
}

bool MToolUndoManager::redo() {
    if (!canRedo()) return false;
    ++_curIndex;
    return true;
}

void MToolUndoManager::resetRedo() {
    if (!canRedo()) return;
    _featureList.resize(static_cast<std::size_t>(_curIndex) + 1);
}

void MToolUndoManager::reset() {
    _featureList.clear();
    _curIndex = notFound;
}

}  // namespace kalim
