#include "input/matrix_market.h"

#include <cmath>
#include <string>
#include <utility>

#include "input/market_entries.h"

namespace ovik {

namespace {

/// Puts entries into their places among all values.
class DenseMarket : public MarketSink {
  public:
    void begin(const MarketHead& head) override {
        head_ = head;
        matrix_.report.rows = head.rows;
        matrix_.report.columns = head.columns;
        matrix_.values = std::make_unique<double[]>(head.rows * head.columns);
    }

    void add(const MarketEntry& entry) override {
        if (std::isinf(entry.value) && matrix_.report.not_finite.count++ < FieldFindings::kListed) {
            matrix_.report.not_finite.places.push_back({entry.line,
                                                        std::to_string(entry.row + 1),
                                                        entry.column + 1,
                                                        std::string(entry.text)});
        }
        matrix_.values[entry.row * head_.columns + entry.column] += entry.value;
        if (head_.is_symmetric && entry.row != entry.column) {
            matrix_.values[entry.column * head_.columns + entry.row] +=
                head_.mirror_sign * entry.value;
        }
    }

    InspectedMatrix take() { return std::move(matrix_); }

  private:
    MarketHead head_;
    InspectedMatrix matrix_;
};

}  // namespace

InspectedMatrix read_matrix_market(MatrixSource& source) {
    DenseMarket matrix;
    read_market_entries(source, matrix);
    return matrix.take();
}

}  // namespace ovik
