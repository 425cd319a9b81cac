#include "DisturbedRun.h"

#include <gtest/gtest.h>
#include <numeric>

namespace marrowbox::test {

namespace {

/// Runs a backup of a generation and kills it before it gives the next object its name.
void killRun(const Destination& destination, int generation, int storedObjects) {
    const Condition storesAnObject = [&](const FileCall& call) {
        return call.isWithin(destination.repository().root() / "Objects") && call.name.starts_with("rename");
    };
    const DisturbedEnd end =
        runDisturbed(destination, generation, storedObjects + 1, Answer::kill(), storesAnObject);
    ASSERT_TRUE(end.wasReached());
}

} // namespace

std::vector<int> Scene::historyBefore() const {
    std::vector<int> generations(static_cast<std::size_t>(generation - 1));
    std::iota(generations.begin(), generations.end(), 1);
    return generations;
}

Destination Scene::before() const {
    const Destination history(generation - 1);
    if (storedByAKilledRun > 0)
        killRun(history, generation, storedByAKilledRun);
    return history;
}

std::vector<Scene> scenes() {
    return {{"firstRun", 1}, {"incrementalRun", 2}, {"runAfterAKilledOne", 2, 6}};
}

std::string DisturbedEnd::text() const {
    return std::string(disturbed.name) + " " + disturbed.path.string() +
           (disturbed.target.empty() ? "" : " to " + disturbed.target.string()) + ", status " +
           std::to_string(status) + ", " + words;
}

DisturbedEnd runDisturbed(const Destination& destination, int generation, int number, Answer answer,
                          const Condition& counts) {
    DisturbedEnd end;
    WatchedProgram program({MARROWBOX_CRASH_RUN, destination.path(), std::to_string(generation)});
    end.status = program.run([&](const FileCall& call) {
        if (!call.isWithin(destination.path()) || !counts(call) || ++end.calls != number)
            return Answer::proceed();
        end.disturbed = call;
        return answer;
    });
    end.words = program.words();
    return end;
}

int countCalls(const Destination& destination, int generation, const Condition& counts) {
    const Destination copy(destination);
    const DisturbedEnd end = runDisturbed(copy, generation, 0, Answer::proceed(), counts);
    EXPECT_EQ(end.status, 0) << "an undisturbed run";
    return end.calls;
}

void expectUnharmed(const Destination& destination, const Scene& scene) {
    std::vector<int> history = scene.historyBefore();
    if (destination.repository().snapshots().size() > history.size())
        history.push_back(scene.generation);
    destination.expectHistory(history);
    destination.expectForeignFilesUntouched();
    destination.backUp(scene.generation);
    history.push_back(scene.generation);
    destination.expectHistory(history);
    destination.expectForeignFilesUntouched();
}

} // namespace marrowbox::test
