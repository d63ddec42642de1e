#include "tools/stage_progress.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "util/memory_text.h"

namespace ovik::tool {

namespace {

std::string joined_parts(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text += part;
    }
    return text;
}

/// What a stage is called, and what is counted in it.
struct StageWords {
    const char* name;
    const char* unit;
};

StageWords words_of(Stage stage) {
    switch (stage) {
        case Stage::Reading:
            return {"Reading", ""};
        case Stage::Components:
            return {"Principal components", " directions"};
        case Stage::Neighbours:
            return {"Neighbours", " rows"};
        case Stage::Affinities:
            return {"Affinities", " rows"};
        case Stage::Sample:
            return {"Map of the sample", " iterations"};
        case Stage::Iterations:
            return {"Iterations", ""};
        case Stage::Fits:
            return {"Fits", " iterations"};
        case Stage::Clusters:
            return {"Clusters", ""};
        case Stage::Quality:
            return {"Quality", " rows"};
        case Stage::Noise:
            return {"Maps of noise", " iterations"};
        case Stage::Stability:
            return {"Stability", " iterations"};
        case Stage::Table:
            return {"Result table", ""};
        case Stage::Page:
            return {"Chart page", ""};
        case Stage::Figure:
            return {"Figure", ""};
    }
    return {"", ""};
}

std::string total_text(Stage stage, std::uint64_t total) {
    return stage == Stage::Reading ? memory_text(static_cast<double>(total))
                                   : std::to_string(total) + words_of(stage).unit;
}

}  // namespace

std::string duration_text(double seconds) {
    const auto whole = static_cast<long>(std::ceil(std::min(seconds, 1e9)));
    if (whole < 100) {
        return std::to_string(whole) + " s";
    }
    const long minutes = (whole + 59) / 60;
    if (minutes < 100) {
        return std::to_string(minutes) + " min";
    }
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

StageProgress::StageProgress(Clock now) : now_(std::move(now)) {}

void StageProgress::at(Stage stage, std::uint64_t done, std::uint64_t total) {
    if (has_begun_.load(std::memory_order_acquire) &&
        stage_.load(std::memory_order_relaxed) == stage) {
        done_.store(done, std::memory_order_relaxed);
        total_.store(total, std::memory_order_relaxed);
        return;
    }
    const std::lock_guard lock(mutex_);
    stage_ = stage;
    done_ = done;
    total_ = total;
    start_ = now_();
    first_ = done;
    has_begun_.store(true, std::memory_order_release);
}

StageProgress::State StageProgress::state() const {
    const std::lock_guard lock(mutex_);
    State state{stage_, done_, total_, -1.0, -1.0};
    if (!has_begun_) {
        return state;
    }
    state.seconds = std::chrono::duration<double>(now_() - start_).count();
    state.done = state.total > 0 ? std::min(state.done, state.total) : state.done;
    if (state.total > 0 && state.done > first_) {
        state.seconds_left = state.seconds * static_cast<double>(state.total - state.done) /
                             static_cast<double>(state.done - first_);
    }
    return state;
}

std::string StageProgress::line(std::size_t room) const {
    const State now = state();
    const bool has_ended = now.total > 0 && now.done == now.total;
    if (now.seconds < std::chrono::duration<double>(kQuiet).count() || has_ended) {
        return "";
    }
    const std::string name = words_of(now.stage).name;
    if (now.total == 0) {
        const std::string so_far = duration_text(now.seconds) + " so far";
        const std::string line = name + ": " + so_far;
        return line.size() <= room ? line : so_far.size() <= room ? so_far : "";
    }
    const auto percent = static_cast<unsigned>(100.0 * static_cast<double>(now.done) /
                                               static_cast<double>(now.total));
    const std::string share = std::to_string(percent) + " %";
    const std::string left =
        now.seconds_left < 0.0 ? "" : ", about " + duration_text(now.seconds_left) + " left";
    const std::string shorter =
        now.seconds_left < 0.0 ? "" : ", " + duration_text(now.seconds_left);
    const std::string total = " of " + total_text(now.stage, now.total);
    for (const std::string& line : {joined_parts({name, ": ", share, total, left}),
                                    joined_parts({name, ": ", share, left}),
                                    joined_parts({name, ": ", share, shorter}),
                                    joined_parts({share, shorter})}) {
        if (line.size() <= room) {
            return line;
        }
    }
    return "";
}

std::string StageProgress::timeLeft() const {
    const State now = state();
    const bool is_known =
        now.seconds >= std::chrono::duration<double>(kQuiet).count() && now.seconds_left > 0.0;
    return is_known ? "about " + duration_text(now.seconds_left) + " left" : "";
}

}  // namespace ovik::tool
