// A file without a name, which goes with the object: for what has to be read twice and comes through a pipe, and for an
// output that is proved before anyone sees it.
#pragma once

#include <string>

namespace orv_h264::editing {

class spool_file {
public:
    static constexpr const char* name = "temporary file"; ///< for messages

    /// Makes one in the folder that TMPDIR names, else in /tmp. Throws std::system_error.
    spool_file();
    spool_file(const spool_file&) = delete;
    spool_file& operator=(const spool_file&) = delete;
    ~spool_file();

    /// Opens it again, from its start.
    const std::string& path() const { return place; }

private:
    int descriptor = -1;
    std::string place;
};

} // namespace orv_h264::editing
