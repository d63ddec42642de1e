#include "stats/sparse_forces.h"

#include <algorithm>
#include <atomic>
#include <numeric>
#include <optional>
#include <utility>

#include "stats/elementwise.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Points or rows of one task: enough to be worth taking, few enough to share evenly, and a
/// multiple of the points that walk a tree together and of the rows of a slice.
constexpr std::size_t kTaskRows = 64;

/// Fewest points for which another thread pays.
constexpr std::size_t kForceGrain = 16;

/// The preparation of a repulsion, shared by workers who have something else to do while one of
/// them begins it.
class SharedPreparation {
  public:
    /// All have to outlive the object.
    SharedPreparation(Repulsion& repulsion, const double* Y, std::size_t workers)
        : repulsion_(repulsion),
          Y_(Y),
          workers_(workers) {}

    /// Begins it, if nobody has.
    void begin() {
        if (has_begun_.test_and_set()) {
            return;
        }
        const Announcement announcement{is_open_};
        parts_.emplace(repulsion_.prepare(Y_), workers_);
    }

    /// Takes parts until none is left; waits for the beginning. There are none if that failed.
    void takeParts(std::size_t worker) {
        is_open_.wait(false);
        if (parts_) {
            parts_->take(worker, [this](std::size_t part) { repulsion_.preparePart(part); });
        }
    }

  private:
    /// Tells at its end, whatever that is, that nobody need wait any longer.
    struct Announcement {
        std::atomic<bool>& is_open;

        ~Announcement() {
            is_open = true;
            is_open.notify_all();
        }
    };

    Repulsion& repulsion_;
    const double* Y_;
    std::size_t workers_;
    std::atomic_flag has_begun_;
    std::atomic<bool> is_open_ = false;
    std::optional<SharedTasks> parts_;
};

}  // namespace

SparseForces::SparseForces(const RankRows& rows,
                           std::size_t dims,
                           std::unique_ptr<Repulsion> repulsion)
    : rows_(rows),
      dims_(dims),
      repulsion_(std::move(repulsion)),
      repulsive_forces_(malloc_array<double>(rows.count() * dims)),
      z_terms_(malloc_array<double>(rows.count())) {
    require_allocated(repulsive_forces_, z_terms_);
}

void SparseForces::gradient(Attraction& attraction, const double* Y, double* gradient) {
    subtractRepulsion(gradient, computeForces(attraction, Y, gradient, false));
}

double SparseForces::cost(Attraction& attraction, const double* Y) {
    const double Z = computeForces(attraction, Y, nullptr, true);
    return attraction.cost(Y, Z);
}

void SparseForces::rowCosts(Attraction& attraction, const double* Y, double* costs) {
    attraction.rowCosts(Y, computeForces(attraction, Y, nullptr, true), costs);
}

double SparseForces::costAndGradient(Attraction& attraction, const double* Y, double* gradient) {
    const double Z = computeForces(attraction, Y, gradient, true);
    subtractRepulsion(gradient, Z);
    return attraction.cost(Y, Z);
}

/// Computes the repulsive forces, the sums of the cost if wanted, and the attractive forces unless
/// they have no place to go to.
///
/// @return the normalisation Z
double SparseForces::computeForces(Attraction& attraction,
                                   const double* Y,
                                   double* attractive_forces,
                                   bool with_cost) {
    const std::size_t count = rows_.own().size();
    const std::size_t tasks = (count + kTaskRows - 1) / kTaskRows;
    const auto rows_of = [count](std::size_t task) {
        return IndexRange{task * kTaskRows, std::min((task + 1) * kTaskRows, count)};
    };
    const int workers = worker_count(count, kForceGrain);
    const auto worker_share = static_cast<std::size_t>(workers);
    SharedTasks attractive_tasks(tasks, worker_share);
    SharedPreparation preparation(*repulsion_, Y, worker_share);
    attraction.prepare(Y);
    // Attraction does not need what repulsion prepares: it is done while that begins. The parts
    // come last, so that who builds some of them finds them in the cache when points are pushed.
    parallel_for(worker_share, 1, [&](std::size_t worker, IndexRange /*share*/) {
        preparation.begin();
        attractive_tasks.take(worker, [&](std::size_t task) {
            attraction.pass(Y, rows_of(task), attractive_forces, with_cost);
        });
        preparation.takeParts(worker);
    });
    repulsion_->finishPreparation();
    parallel_tasks(tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
        repulsion_->compute(rows_of(i), repulsive_forces_.get(), z_terms_.get());
    });
    return normalisation();
}

/// The terms of all points, one after the other.
double SparseForces::normalisation() const {
    const IndexRange own = rows_.own();
    return rows_.ranks().addInTurn(0.0, [&](double start) {
        return std::accumulate(z_terms_.get() + own.begin, z_terms_.get() + own.end, start);
    });
}

void SparseForces::subtractRepulsion(double* gradient, double Z) const {
    const double* const repulsion = repulsive_forces_.get();
    const double factor = annealing_;
    const double annealed_Z = factor * Z;
    const std::size_t first = rows_.own().begin * dims_;
    parallel_for_each(rows_.own().size() * dims_, kElementwiseGrain, [=](std::size_t of_rank) {
        const std::size_t i = first + of_rank;
        gradient[i] = factor * (gradient[i] - repulsion[i] / annealed_Z);
    });
    rows_.gather(gradient, dims_, Errand::Gradients);
}

}  // namespace ovik
