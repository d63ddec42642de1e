#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <future>
#include <ovik/stats/engine.h>
#include <random>
#include <vector>

/// Embeds in a thread of its own, shows how far it is, and ends it after a while.
int main() {
    std::mt19937 generator(1);
    std::normal_distribution<double> normal;
    std::vector<double> values(std::size_t{2000} * 10);
    for (double& value : values) {
        value = normal(generator);
    }
    ovik::Engine engine;
    engine.options.max_iter = 1'000'000;
    std::atomic<int> iteration = -1;
    std::atomic<bool> is_cancelled = false;
    ovik::FitHooks hooks;
    hooks.on_iteration = [&](const ovik::FitState& state) {
        iteration = state.reached.iteration;
        return !is_cancelled;  // false ends the run here
    };
    try {
        engine.setInput(values, 10);
        auto running = std::async(std::launch::async, [&] { return engine.run(hooks); });
        while (running.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready) {
            std::printf("\riteration %d", iteration.load());
            is_cancelled = iteration >= 20;
        }
        const ovik::Embedding map = running.get();
        std::printf("\n%s\n", map.isComplete() ? "complete" : "ended early");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "\n%s\n", error.what());
        return 1;
    }
}
