// Work on the rows of a picture: on several threads, measured, with progress.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace host {

// Calls work(first, end) on disjoint bands of rows that cover [0, height), each on its own thread.
void overRows(int height, int threads, const std::function<void(int first, int end)> &work);

// A line on the error stream that overwrites itself; nothing unless that stream is a terminal.
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void show(const std::string &text);

private:
    bool visible;
};

double secondsOf(const std::function<void()> &work);

// Of at least one value.
double medianOf(std::vector<double> values);

// The median time of several runs of work, in seconds. announce(run) comes before each run and is not timed.
double medianSeconds(int runs, const std::function<void(int run)> &announce, const std::function<void()> &work);

} // namespace host
