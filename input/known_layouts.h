#pragma once

#include <string>
#include <vector>

#include "input/table_head.h"
#include "input/table_layout.h"

namespace ovik {

/// A form that programs and databases give their tables.
struct KnownLayout {
    /// What such files are called.
    std::string name;
    bool (*recognises)(const TableHead& head);
    /// Fills in which field is the name, which are no values, which lines are no rows, and what
    /// there is to tell besides. Delimiter, header and name are filled in before.
    void (*describe)(const TableHead& head, TableLayout& layout);
};

/// All layouts. The first that recognises a file is its layout; the last is ordinary text, which is
/// all else.
const std::vector<KnownLayout>& known_layouts();

}  // namespace ovik
