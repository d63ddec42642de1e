#include "plots/table_run.h"

#include <utility>

#include "results/result_rows.h"

namespace ovik {

std::optional<TableRun> TableRun::read(const std::string& path) {
    auto rows = read_result_rows(path);
    if (!rows) {
        return std::nullopt;
    }
    TableRun table;
    for (ResultRow& row : *rows) {
        table.x_.push_back(row.x);
        table.y_.push_back(row.y);
        table.names_.push_back(std::move(row.name));
        table.groups_.push_back(std::move(row.group));
        table.functions_.push_back(std::move(row.function));
    }
    return table;
}

PlottedRun<double> TableRun::run() const {
    PlottedRun<double> run;
    run.x = x_;
    run.y = y_;
    run.names = names_;
    run.groups = groups_;
    run.functions = functions_;
    return run;
}

bool TableRun::holds(const std::vector<double>& x, const std::vector<double>& y) const {
    if (x.size() != x_.size() || y.size() != y_.size()) {
        return false;
    }
    for (std::size_t row = 0; row < x_.size(); ++row) {
        if (!is_in_table_as(x[row], x_[row]) || !is_in_table_as(y[row], y_[row])) {
            return false;
        }
    }
    return true;
}

}  // namespace ovik
