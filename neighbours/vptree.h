#pragma once

#include <algorithm>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <queue>
#include <utility>
#include <vector>

namespace ovik {

/// A vantage-point tree: finds the nearest of a fixed list of points under a metric.
///
/// Every node holds one point, the vantage point, and the median of the distances of the points
/// below it; the nearer half goes left, the farther half right. Vantage points are drawn with
/// `rand` from the process-wide stream, one draw per node with at least two points: the number of
/// draws depends on the number of points alone, and so do the results, but for points at equal
/// distance.
///
/// @tparam T         a point; copied into the tree
/// @tparam Distance  a metric. Points at a distance of NaN or infinity are never neighbours.
/// @par Source Yianilos, "Data structures and algorithms for nearest neighbor search in general
/// metric spaces", SODA 1993
template <typename T, double (*Distance)(const T&, const T&)>
class VpTree {
  public:
    struct Node {
        /// Position of the vantage point in `items`.
        std::int32_t index = 0;
        /// Median distance from the vantage point to the points below.
        double threshold = 0.0;
        Node* left = nullptr;
        Node* right = nullptr;

        Node() = default;
        Node(const Node&) = delete;
        Node& operator=(const Node&) = delete;

        ~Node() {
            delete left;
            delete right;
        }
    };

    /// A candidate of a query: a position in `items` and its distance from the target.
    /// Ordered by distance alone, so that a priority queue has the farthest candidate on top.
    struct HeapItem {
        std::int32_t index;
        double dist;

        bool operator<(const HeapItem& other) const { return dist < other.dist; }
    };

    /// Compares two points by their distance from a reference point.
    struct DistanceComparator {
        const T& reference;

        bool operator()(const T& a, const T& b) const {
            return Distance(reference, a) < Distance(reference, b);
        }
    };

    /// The state of one thread-safe query; used again, it does not allocate anew.
    struct Query {
        /// Pruning radius: the distance of the farthest candidate once there are enough.
        double tau = DBL_MAX;
        std::priority_queue<HeapItem> heap;
        /// The result: nearest first.
        std::vector<HeapItem> neighbours;
    };

    /// The points in tree order.
    std::vector<T> items;
    /// Pruning radius of the query that runs.
    double tau = DBL_MAX;
    /// Null for an empty tree.
    Node* root = nullptr;

    VpTree() = default;
    VpTree(const VpTree&) = delete;
    VpTree& operator=(const VpTree&) = delete;

    ~VpTree() { delete root; }

    /// Builds the tree over a copy of `points`; an earlier tree is discarded.
    ///
    /// @complexity O(n log n) expected distances
    void create(const std::vector<T>& points) {
        delete root;
        root = nullptr;
        items = points;
        root = buildFromPoints(0, static_cast<int>(items.size()));
    }

    /// Builds the subtree over `items[lower]` to `items[upper - 1]`, which it reorders.
    ///
    /// @return its root, owned by the caller; null if the range is empty
    Node* buildFromPoints(int lower, int upper) {
        if (upper == lower) {
            return nullptr;
        }
        auto node = std::make_unique<Node>();
        node->index = lower;
        if (upper - lower < 2) {
            return node.release();
        }
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream of one thread decides the tree
        const double draw = static_cast<double>(std::rand()) / 2147483647.0;
        const int vantage = static_cast<int>(draw * static_cast<double>(upper - lower - 1)) + lower;
        std::swap(items[position(lower)], items[position(vantage)]);
        const int median = (upper + lower) / 2;
        std::nth_element(items.begin() + lower + 1,
                         items.begin() + median,
                         items.begin() + upper,
                         DistanceComparator{items[position(lower)]});
        node->threshold = Distance(items[position(lower)], items[position(median)]);
        node->left = buildFromPoints(lower + 1, median);
        node->right = buildFromPoints(median, upper);
        return node.release();
    }

    /// Finds the `k` nearest points, nearest first; all points if there are fewer than `k`.
    ///
    /// A point at exactly the distance of the farthest of `k` candidates is not admitted: of
    /// equals, those stay that were met first. Not thread-safe, since the radius lives in the tree.
    ///
    /// @param k          below 1 gives empty results
    /// @param results    replaced by copies of the points
    /// @param distances  replaced by their distances
    /// @complexity O(log n) expected distances where the metric prunes well
    void search(const T& target, int k, std::vector<T>* results, std::vector<double>* distances) {
        tau = DBL_MAX;
        std::priority_queue<HeapItem> heap;
        search(root, target, k, heap);
        results->clear();
        distances->clear();
        while (!heap.empty()) {
            results->push_back(items[position(heap.top().index)]);
            distances->push_back(heap.top().dist);
            heap.pop();
        }
        std::reverse(results->begin(), results->end());
        std::reverse(distances->begin(), distances->end());
    }

    /// The recursive query: offers the points below `node` to `heap`, narrowing `tau`.
    void search(Node* node, const T& target, int k, std::priority_queue<HeapItem>& heap) {
        if (k > 0) {
            visit(node, target, static_cast<std::size_t>(k), heap, tau);
        }
    }

    /// The public query in a form that several threads may use on a finished tree, each with a
    /// `query` of its own: the same neighbours in the same order.
    void search(const T& target, int k, Query& query) const {
        query.tau = DBL_MAX;
        query.neighbours.clear();
        if (k > 0) {
            visit(root, target, static_cast<std::size_t>(k), query.heap, query.tau);
        }
        while (!query.heap.empty()) {
            query.neighbours.push_back(query.heap.top());
            query.heap.pop();
        }
        std::reverse(query.neighbours.begin(), query.neighbours.end());
    }

  private:
    static std::size_t position(int index) { return static_cast<std::size_t>(index); }

    void visit(const Node* node,
               const T& target,
               std::size_t k,
               std::priority_queue<HeapItem>& heap,
               double& radius) const {
        if (node == nullptr) {
            return;
        }
        const double dist = Distance(items[position(node->index)], target);
        if (dist < radius) {
            if (heap.size() == k) {
                heap.pop();
            }
            heap.push(HeapItem{node->index, dist});
            if (heap.size() == k) {
                radius = heap.top().dist;
            }
        }
        if (node->left == nullptr && node->right == nullptr) {
            return;
        }
        if (dist < node->threshold) {
            if (dist - radius <= node->threshold) {
                visit(node->left, target, k, heap, radius);
            }
            if (dist + radius >= node->threshold) {
                visit(node->right, target, k, heap, radius);
            }
        } else {
            if (dist + radius >= node->threshold) {
                visit(node->right, target, k, heap, radius);
            }
            if (dist - radius <= node->threshold) {
                visit(node->left, target, k, heap, radius);
            }
        }
    }
};

}  // namespace ovik
