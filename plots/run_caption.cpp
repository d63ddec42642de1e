#include "plots/run_caption.h"

namespace ovik {

namespace {

thread_local const RunCaption* current = nullptr;

}  // namespace

CaptionScope::CaptionScope(const RunCaption& caption) : outer_(current) {
    current = &caption;
}

CaptionScope::~CaptionScope() {
    current = outer_;
}

const RunCaption& current_caption() {
    static const RunCaption kNone;
    return current == nullptr ? kNone : *current;
}

}  // namespace ovik
