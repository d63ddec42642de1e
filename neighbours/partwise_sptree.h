#pragma once

#include "neighbours/sptree.h"

namespace ovik {

/// The tree as the engine uses it: built in parts among other tasks, and walked by many points in
/// vector instructions. What the steps do stands at `SPTree`; a tree that is built by them answers
/// `computeRepulsion` alone.
class PartwiseSPTree : public SPTree {
  public:
    using SPTree::SPTree;

    using SPTree::computeRepulsion;
    using SPTree::finishRebuild;
    using SPTree::prepareRebuild;
    using SPTree::rebuild;
    using SPTree::rebuildPart;
};

}  // namespace ovik
