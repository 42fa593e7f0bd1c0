#pragma once

#include "Cost.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvanta {

/// Runs a program by itself: started, its output thrown away, and waited for. Throws std::runtime_error if it
/// fails.
inline void runBare(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error(words.front() + " failed");
    }
}

inline double median(std::vector<Cost> costs, double Cost::*what) {
    std::ranges::sort(costs, {}, what);
    return costs[costs.size() / 2].*what;
}

/// The median of what the pairs' ratios are, and the quartiles, by which the machine's own unrest is told.
inline void countRatios(benchmark::State& state, const std::string& name, const std::vector<Cost>& ofBare,
                        const std::vector<Cost>& ofModule, double Cost::*what) {
    std::vector<double> ratios;
    for (std::size_t pair = 0; pair < ofBare.size(); ++pair) {
        ratios.push_back((ofModule[pair].*what) / (ofBare[pair].*what));
    }
    std::ranges::sort(ratios);
    const std::size_t quarter = ratios.size() / 4;
    state.counters[name + "_low"] = ratios[quarter];
    state.counters[name] = ratios[ratios.size() / 2];
    state.counters[name + "_high"] = ratios[ratios.size() - 1 - quarter];
}

/// Measures both in turn, each first in every other round, so that what else the machine does falls on both.
template <typename Bare, typename Module>
void compareInTurn(benchmark::State& state, Bare bare, Module module) {
    std::vector<Cost> ofBare;
    std::vector<Cost> ofModule;
    // What earlier work left for the disk to do is none of the next one's.
    const auto measure = [](std::vector<Cost>& costs, const auto& work) {
        sync();
        costs.push_back(costOf(work));
    };
    for (auto _ : state) {
        const bool bareFirst = ofBare.size() % 2 == 0;
        if (bareFirst) {
            measure(ofBare, bare);
        }
        measure(ofModule, module);
        state.SetIterationTime(ofModule.back().wall);
        if (!bareFirst) {
            measure(ofBare, bare);
        }
    }
    state.counters["bare_s"] = median(ofBare, &Cost::wall);
    state.counters["module_s"] = median(ofModule, &Cost::wall);
    state.counters["bare_processor_s"] = median(ofBare, &Cost::processor);
    state.counters["module_processor_s"] = median(ofModule, &Cost::processor);
    countRatios(state, "ratio", ofBare, ofModule, &Cost::wall);
    countRatios(state, "processor_ratio", ofBare, ofModule, &Cost::processor);
}

} // namespace corvanta
