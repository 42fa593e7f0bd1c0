#include "SeveralJobs.hpp"

#include "Failures.hpp"

void runEach(Console& console, std::size_t count, const std::function<void(std::size_t)>& run) {
    if (count == 1) {
        run(0);
        return;
    }
    console.gatherResults();
    int status = 0;
    for (std::size_t number = 0; number < count; ++number) {
        try {
            run(number);
        } catch (const std::exception& error) {
            const int own = statusOf(error);
            if (own > exitStatus::signalled) {
                throw;
            }
            if (dynamic_cast<const Told*>(&error) == nullptr) {
                console.fail(error);
            }
            status = status == 0 || status == own ? own : exitStatus::failed;
        }
    }
    if (status != 0) {
        throw Told(status);
    }
}

void runEachFile(Console& console, const FileArguments& arguments,
                 const std::function<void(const Files&)>& run) {
    const std::vector<Files> jobs = arguments.each();
    runEach(console, jobs.size(), [&](std::size_t number) {
        const Files& files = jobs[number];
        console.setFile(jobs.size() > 1 ? files.inputs.front() : "");
        run(files);
    });
}
