#include "stats/shared_fit.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "results/digest.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/numerics.h"
#include "stats/optimisation.h"
#include "util/byte_queue.h"
#include "util/random_stream.h"
#include "util/threads.h"

namespace ovik {

namespace {

/// What the first rank tells the others.
enum class Order : std::uint32_t {
    /// A fit begins: a `FitOrder` comes.
    Fit,
    /// The objective is made, and the start comes.
    Start,
    /// Another iteration.
    GoOn,
    /// No other one: the fit ends as it stands.
    Stop,
    /// The fit has failed.
    Leave,
    /// A number of threads comes.
    Threads,
    End,
};

/// What a fit is.
struct FitOrder {
    std::uint64_t rows;
    std::uint64_t columns;
    FitOptions options;
    SharedWants wants;
};

static_assert(std::is_trivially_copyable_v<FitOrder>);

/// What the other ranks need of a state to go on from.
struct ResumedOrder {
    bool is_resumed;
    IterationReport reached;
    double marked_cost;
};

template <typename T>
void tell_one(Ranks& ranks, const T& value) {
    ranks.tell(std::span(&value, 1), Errand::Orders);
}

template <typename T>
T hear_one(Ranks& ranks) {
    T value{};
    ranks.hear(std::span(&value, 1), Errand::Orders);
    return value;
}

/// What the functions by which affinities are made give here.
Digest digest_of_functions(const Elementary& elementary) {
    constexpr std::size_t kProbes = 4096;
    std::vector<double> values(2 * kProbes);
    for (std::size_t i = 0; i < kProbes; ++i) {
        const double x = 0.0137 * static_cast<double>(i + 1);
        values[i] = -x;
        values[kProbes + i] = elementary.log(x);
    }
    elementary.exponentials(values.data(), kProbes);
    return digest_of(std::span<const double>(values));
}

/// Has the first rank look whether all compute the same, and tells all of them.
bool compute_alike(Ranks& ranks, NumericsKind numerics) {
    const Digest own = digest_of_functions(elementary_of(numerics));
    bool are_alike = true;
    ranks.collect(
        std::as_bytes(std::span(&own, 1)),
        [&](std::size_t /*from*/, std::span<const std::byte> bytes) {
            are_alike &= ByteReader(bytes).get<Digest>() == own;
        },
        Errand::Orders);
    ranks.hear(std::span(&are_alike, 1), Errand::Orders);
    return are_alike;
}

/// The other ranks' end of a fit.
class ServedFit {
  public:
    explicit ServedFit(Ranks& ranks) : ranks_(ranks), order_(hear_one<FitOrder>(ranks)) {}

    [[nodiscard]] NumericsKind numerics() const { return order_.options.numerics; }

    /// Makes the objective of this rank.
    void begin() {
        OwnRandomStream stream;
        stream.seed(static_cast<unsigned int>(order_.options.seed));
        NeighbourGraph graph;
        std::optional<NeighbourRecall> recall;
        objective_ = method_of(order_.options)
                         .make({{nullptr, order_.rows, order_.columns},
                                order_.options,
                                {},
                                nullptr,
                                order_.wants.graph ? &graph : nullptr,
                                stream,
                                {},
                                &recall,
                                order_.wants.distances,
                                &ranks_});
    }

    /// Takes the steps that the first one takes.
    void run() {
        const Schedule schedule(order_.options, order_.rows);
        objective_->exaggerate(schedule.exaggeration());
        const auto dims = static_cast<std::size_t>(order_.options.out_dims);
        std::vector<double> Y(order_.rows * dims);
        GradientDescent descent(Y.size(), order_.options.gains);
        Optimisation optimisation(*objective_, descent, {Y.data(), order_.rows, dims}, schedule);
        takeStart(Y, optimisation);
        Order order = Order::GoOn;
        while (order == Order::GoOn && !optimisation.isDone()) {
            optimisation.iterate();
            order = hear_one<Order>(ranks_);
        }
        if (order == Order::Leave) {
            return;
        }
        optimisation.finalCost();
        if (order_.wants.row_costs) {
            optimisation.rowCosts();
            optimisation.rowMisfits();
        }
    }

  private:
    void takeStart(std::vector<double>& Y, Optimisation& optimisation) {
        ranks_.hear(std::span(Y), Errand::Rows);
        const auto resumed = hear_one<ResumedOrder>(ranks_);
        if (!resumed.is_resumed) {
            return;
        }
        std::vector<double> velocity(Y.size());
        std::vector<double> gains(Y.size());
        ranks_.hear(std::span(velocity), Errand::Rows);
        ranks_.hear(std::span(gains), Errand::Rows);
        const std::vector<double> embedding = Y;
        optimisation.resume({resumed.reached, embedding, velocity, gains, resumed.marked_cost});
    }

    Ranks& ranks_;
    FitOrder order_;
    std::unique_ptr<Objective> objective_;
};

Order serve_until(Ranks& ranks);

/// Serves a fit, and those that begin while it starts.
///
/// @return the order that ended it, if it is also for what it was within
Order serve_fit(Ranks& ranks) {
    ServedFit fit(ranks);
    if (!compute_alike(ranks, fit.numerics())) {
        return Order::Leave;
    }
    try {
        fit.begin();
        const Order order = serve_until(ranks);
        if (order == Order::Start) {
            fit.run();
        }
        return order;
    } catch (const InputError&) {
        // Of the map or the rows, which all have: the first one says so.
        return Order::Leave;
    }
}

/// Does what is ordered up to an order that ends it, which is given back.
Order serve_until(Ranks& ranks) {
    for (;;) {
        Order order = hear_one<Order>(ranks);
        if (order == Order::Threads) {
            set_thread_count(hear_one<int>(ranks));
            continue;
        }
        if (order == Order::Fit) {
            order = serve_fit(ranks) == Order::End ? Order::End : Order::Fit;
        }
        if (order != Order::Fit) {
            return order;
        }
    }
}

}  // namespace

SharedFit::~SharedFit() {
    if (is_shared_) {
        ranks_.giveUp();
    }
}

void SharedFit::begin(std::size_t rows,
                      std::size_t columns,
                      const FitOptions& options,
                      const SharedWants& wants) {
    if (!ranks_.areSeveral()) {
        return;
    }
    is_shared_ = true;
    tell_one(ranks_, Order::Fit);
    tell_one(ranks_, FitOrder{rows, columns, options, wants});
    if (!compute_alike(ranks_, options.numerics)) {
        is_shared_ = false;
        throw InputError(
            "the machines do not compute the same exponentials or logarithms, so that they would "
            "not hold the same map\nRun on machines of one kind, or with --numerics portable.");
    }
}

void SharedFit::start(MatrixView<const double> Y, const FitState* resumed) {
    if (!is_shared_) {
        return;
    }
    tell_one(ranks_, Order::Start);
    if (resumed == nullptr) {
        ranks_.tell(Y.all(), Errand::Rows);
        tell_one(ranks_, ResumedOrder{false, {}, 0.0});
        return;
    }
    ranks_.tell(resumed->embedding, Errand::Rows);
    tell_one(ranks_, ResumedOrder{true, resumed->reached, resumed->marked_cost});
    ranks_.tell(resumed->velocity, Errand::Rows);
    ranks_.tell(resumed->gains, Errand::Rows);
}

void SharedFit::tell(bool goes_on) {
    if (is_shared_) {
        tell_one(ranks_, goes_on ? Order::GoOn : Order::Stop);
    }
}

void SharedFit::leave() {
    if (is_shared_) {
        tell_one(ranks_, Order::Leave);
        is_shared_ = false;
    }
}

void serve_fits(Ranks& ranks) {
    while (serve_until(ranks) != Order::End) {
    }
}

void end_service(Ranks& ranks) {
    if (ranks.areSeveral()) {
        tell_one(ranks, Order::End);
    }
}

void tell_thread_count(Ranks& ranks, int threads) {
    if (ranks.areSeveral()) {
        tell_one(ranks, Order::Threads);
        tell_one(ranks, threads);
    }
}

}  // namespace ovik
