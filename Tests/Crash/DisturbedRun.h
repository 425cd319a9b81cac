#pragma once

#include "Destination.h"
#include "Support/Spread.h"
#include "Support/WatchedProgram.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace marrowbox::test {

/// Which run is disturbed: the one of this generation, on a history of the ones before it.
struct Scene {
    std::string name;
    int generation;
    /// How many objects a run before it had stored when it was killed; 0 when there was none.
    int storedByAKilledRun = 0;

    std::vector<int> historyBefore() const;
    Destination before() const;
    friend std::ostream& operator<<(std::ostream& stream, const Scene& scene) { return stream << scene.name; }
};

/// A first run, one that finds most of its content stored, and one after a run that was killed.
std::vector<Scene> scenes();

/// How a run ended in which one call was disturbed.
struct DisturbedEnd {
    int status = 0; ///< As of wait(2).
    int calls = 0;  ///< Calls on the destination that were asked for.
    FileCall disturbed;
    std::string words = {}; ///< Of the program's refusal.

    bool wasReached() const { return !disturbed.name.empty(); }
    std::string text() const;
};

/// Runs a backup of a generation as a program of its own, and answers its n-th call on the destination that
/// satisfies the condition, if it comes to so many.
using Condition = std::function<bool(const FileCall&)>;
DisturbedEnd runDisturbed(const Destination& destination, int generation, int number, Answer answer,
                          const Condition& counts);

/// Runs the same undisturbed and gives the number of its calls that satisfy the condition.
int countCalls(const Destination& destination, int generation, const Condition& counts);

/// Expects that a disturbed run left a whole history, with its own snapshot or without it, and that the next
/// run succeeds.
void expectUnharmed(const Destination& destination, const Scene& scene);

} // namespace marrowbox::test
