#pragma once

#include <string>
#include <vector>

#include "input/hdf5_file.h"

namespace ovik::hdf5 {

/// The texts of an array of one dimension; of whole numbers, their digits; of categories, the one
/// of each element.
///
/// @param path  of an array, or of the group of an array of categories
/// @throws InputError if they are something else, take more memory than there is, or hold control
/// characters
std::vector<std::string> read_texts(const File& file, const std::string& path);

/// The names of the rows of an annotated table, such as `obs`: the column that its attribute
/// `_index` names.
///
/// @throws InputError if the table is none, or its names cannot be read
std::vector<std::string> read_index(const File& file, const std::string& table);

}  // namespace ovik::hdf5
