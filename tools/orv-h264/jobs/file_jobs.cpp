#include "jobs/file_jobs.h"

#include "container/demuxer.h"
#include "failed_allocations.h"
#include "jobs/child_process.h"
#include "jobs/path_list.h"
#include "messages.h"
#include "standard_output.h"
#include "stream_input.h"
#include "system_calls.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <exception>
#include <iterator>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <poll.h>
#include <sys/wait.h>

namespace orv_h264 {

namespace {

constexpr std::size_t most_waiting = 256; // files that are read, and whose turn has not come
constexpr int status_untold = 4;          // of a process that could not even say what went wrong

std::size_t processes_at_once(unsigned jobs)
{
    return std::max(jobs == 0 ? std::thread::hardware_concurrency() : jobs, 1U);
}

/// Tells why a file could not be read, to a person and in the output.
void tell_failure(const file_work& work, const std::string& path, std::string_view why, int status)
{
    const std::string name = input_name(path);
    const std::string before = name + ": ";
    if (why.starts_with(before))
        why.remove_prefix(before.size());
    print_error(before + std::string(why));
    work.print_failure(name, {{"error", why}, {"status", status}});
}

exit_status read_or_tell(const file_work& work, const std::string& path)
{
    const auto failed = [&](exit_status status, std::string_view why) {
        if (take_failed_allocation()) {
            status = exit_usage_or_io;
            why = "out of memory";
        }
        tell_failure(work, path, why, status);
        return status;
    };
    try {
        if (path.find('\0') != std::string::npos)
            throw refusal(exit_usage_or_io, "a zero byte in the name; --null is for lists that these divide");
        return work.read(path);
    } catch (const refusal& refused) {
        return failed(refused.status, refused.what());
    } catch (const std::bad_alloc&) {
        return failed(exit_usage_or_io, "out of memory");
    } catch (const std::exception& error) {
        return failed(exit_usage_or_io, error.what());
    }
}

/// By its name: the parent opens no file, which may wait for ever.
bool may_be_container(const std::string& path)
{
    constexpr std::string_view endings[] = {".mp4", ".m4v", ".mov", ".mkv", ".ts", ".m2ts", ".mts", ".flv"};
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](std::string_view ending) { return path.ends_with(ending); });
}

/// What the process of a file does.
int read_alone(const file_work& work, const std::string& path) noexcept
{
    std::set_terminate([] { std::_Exit(status_untold); });
    try {
        const exit_status status = read_or_tell(work, path);
        check_allocations();
        flush_output();
        return status;
    } catch (const std::exception&) {
        return status_untold;
    }
}

/// The files in order: those that are named, and then those of the list as they come.
class file_queue {
public:
    explicit file_queue(const file_set& files) : named(files.paths)
    {
        if (!files.list.empty())
            list.emplace(files.list, files.null_separated ? '\0' : '\n');
    }

    std::optional<std::string> next()
    {
        if (again)
            return std::exchange(again, std::nullopt);
        if (taken < named.size())
            return named[taken++];
        return list ? list->next() : std::nullopt;
    }

    /// The next one will be this.
    void give_back(std::string path) { again = std::move(path); }

    /// More may come when the list is read on.
    bool waits_for_list() const { return list && !list->at_end(); }
    path_list& rest() { return *list; }

private:
    const std::vector<std::string>& named;
    std::size_t taken = 0;
    std::optional<path_list> list;
    std::optional<std::string> again;
};

class file_jobs {
public:
    file_jobs(const file_set& files, const file_work& chosen)
        : queue(files), work(chosen), at_once(processes_at_once(files.jobs)), input_taken(files.list == "-")
    {
    }

    exit_status run()
    {
        for (start_more(); !jobs.empty() || queue.waits_for_list(); start_more()) {
            wait();
            print();
        }
        return static_cast<exit_status>(worst);
    }

private:
    struct job {
        std::string path;
        std::optional<child_process> process; // none where it is refused
        bool has_printed = false;
    };

    bool has_room() const { return running < at_once && jobs.size() < at_once + most_waiting; }

    void start_more()
    {
        while (has_room()) {
            std::optional<std::string> path = queue.next();
            if (!path)
                return;
            jobs.emplace_back().path = std::move(*path);
            try {
                start(jobs.back());
            } catch (const std::system_error&) {
                if (running == 0)
                    throw;
                at_once = running; // as many as the system lets it have
                queue.give_back(std::move(jobs.back().path));
                jobs.pop_back();
            }
        }
    }

    void start(job& started)
    {
        if (started.path == "-" && std::exchange(input_taken, true))
            return;
        flush_output(); // or the process would have it, too
        if (!demuxer_loaded && may_be_container(started.path)) {
            load_demuxer(); // here once, and not in every child
            demuxer_loaded = true;
        }
        started.process.emplace([&] { return read_alone(work, started.path); });
        ++running;
    }

    /// Until a process prints or ends, or the list goes on.
    void wait()
    {
        std::vector<pollfd> polled;
        std::vector<child_stream*> streams;
        for (job& each : jobs)
            for (child_stream* const stream : streams_of(each))
                if (stream->descriptor() >= 0 && (&each == &jobs.front() || !stream->full())) {
                    polled.push_back({stream->descriptor(), POLLIN, 0});
                    streams.push_back(stream);
                }
        const bool list_too = has_room() && queue.waits_for_list();
        if (list_too)
            polled.push_back({queue.rest().descriptor(), POLLIN, 0});
        if (polled.empty())
            return; // the first is refused
        flush_output();
        if (again([&] { return ::poll(polled.data(), polled.size(), -1); }) < 0)
            throw std::system_error(errno, std::generic_category(), "cannot wait for processes");
        for (std::size_t i = 0; i < streams.size(); ++i)
            if (polled[i].revents != 0)
                streams[i]->read();
        if (list_too && polled.back().revents != 0)
            queue.rest().read_more();
        for (job& each : jobs)
            if (each.process && each.process->reap())
                --running;
    }

    static std::vector<child_stream*> streams_of(job& of)
    {
        return of.process ? std::vector{&of.process->out, &of.process->err} : std::vector<child_stream*>();
    }

    /// What the first has printed so far, and the next one when it has ended.
    void print()
    {
        for (; !jobs.empty(); jobs.pop_front()) {
            job& first = jobs.front();
            if (first.process) {
                first.process->out.take_lines([&](std::string_view lines) { print_of(first, lines); });
                first.process->err.take_lines(write_message);
                if (!first.process->has_ended())
                    return;
            }
            finish(first);
        }
    }

    void print_of(job& first, std::string_view lines)
    {
        begin_printing(first);
        write_output(lines);
    }

    void begin_printing(job& first)
    {
        if (!first.has_printed && any_printed && !work.between.empty())
            write_output(work.between);
        first.has_printed = any_printed = true;
    }

    void finish(job& ended)
    {
        const int status = ended.process ? ended.process->wait_status() : 0;
        std::string why;
        if (!ended.process)
            why = "the standard input is read once, and taken";
        else if (WIFSIGNALED(status))
            why = fmt::format("ended by signal {} ({})", WTERMSIG(status), ::strsignal(WTERMSIG(status)));
        else if (WEXITSTATUS(status) >= status_untold)
            why = fmt::format("ended with status {}", WEXITSTATUS(status));
        if (!why.empty()) {
            if (work.between_failures)
                begin_printing(ended);
            tell_failure(work, ended.path, why, exit_usage_or_io);
        }
        worst = std::max(worst, why.empty() ? WEXITSTATUS(status) : int{exit_usage_or_io});
    }

    file_queue queue;
    const file_work& work;
    std::size_t at_once;
    bool demuxer_loaded = false;
    bool input_taken;
    std::deque<job> jobs; // in order; the first ones may still be read, later ones have ended and wait for these
    std::size_t running = 0;
    bool any_printed = false;
    int worst = exit_clean;
};

} // namespace

exit_status read_files(const file_set& files, const file_work& work)
{
    static_cast<void>(std::signal(SIGCHLD, SIG_DFL)); // where it is ignored, no process could be waited for
    remember_terminals();
    return file_jobs(files, work).run();
}

} // namespace orv_h264
