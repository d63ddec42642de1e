#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace ovik {

/// What the genes of a run do, in the terms of a controlled vocabulary.
struct RowTerms {
    /// A term.
    struct Term {
        std::string id;
        std::string name;
        /// 'P' a process, 'F' a function, 'C' a component of the cell or a complex.
        char aspect;
    };

    /// The terms that any row has.
    std::vector<Term> list;
    /// The terms of each row as ascending places in `list`.
    std::vector<std::vector<std::size_t>> of_rows;
    /// Rows of a gene that an earlier row is of, each with the first such row; ascending.
    std::vector<std::pair<std::size_t, std::size_t>> repeated;
};

}  // namespace ovik
