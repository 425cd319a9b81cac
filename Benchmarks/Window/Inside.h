#pragma once

namespace marrowbox::bench {

/// The program with its window, measuring itself: selects the unit of this row and then the first again, and
/// writes the most milliseconds for which an event had to wait meanwhile, and how many of them this thread
/// worked.
int measureSelecting(int count, char** words, int row);

/// The program with its window closed, measuring itself over so many seconds that lie between two ticks, and
/// over those after them, in which one tick lies: writes the milliseconds of processor time between the
/// ticks, how often a thread was woken then, the milliseconds with the tick, and its resident memory in
/// bytes.
int measureIdling(int count, char** words, int seconds, int secondsWithTick);

} // namespace marrowbox::bench
