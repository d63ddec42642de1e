#include "results/checkpoint_path.h"

#include <filesystem>

#include "results/checkpoint.h"
#include "util/input_error.h"

namespace ovik {

void check_checkpoint_path(const std::string& path) {
    namespace fs = std::filesystem;
    if (!fs::exists(path)) {
        return;
    }
    if (!fs::is_regular_file(path) || (!fs::is_empty(path) && !opens_as_checkpoint(path))) {
        throw InputError(path +
                         ": this is not a checkpoint, and one would replace it\nGive another name "
                         "with --checkpoint, or remove it.");
    }
}

}  // namespace ovik
