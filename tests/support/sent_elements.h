// The elements of a unit by the names that the two older interfaces have for their fields.
#pragma once

#include "support/named_values.h"

#include <orv-utils-v4/h264_syntax.h>

#include <map>
#include <string>
#include <string_view>

namespace orv_utils_v4::h264 {

/// Told of a parameter set or a slice header. Scaling lists are left out, their fields are of another make; and slice
/// headers from their list modifications on, as the older interfaces leave them.
class sent_elements : public visitor {
public:
    void open(const char* name) override
    {
        left_out += left_out > 0 || is_left_out(name) ? 1 : 0;
        behind_lists = behind_lists || std::string_view(name) == "ref_pic_list_modification";
        const std::string_view structure = name;
        in_unit += structure == "nal_unit" ? 1 : 0;
        scopes.push_back(scope);
        if (structure == "vui_parameters")
            scope = "vui.";
        else if (structure == "hrd_parameters")
            scope = vcl ? "vui.vcl_hrd." : "vui.nal_hrd.";
    }
    void close() override
    {
        left_out -= left_out > 0 ? 1 : 0;
        in_unit = 0;
        scope = scopes.back();
        scopes.pop_back();
    }
    void element(const traced_element& e) override
    {
        const std::string_view name = e.name.name();
        if (left_out > 0 || in_unit > 0 || behind_lists)
            return;
        if (name == "vcl_hrd_parameters_present_flag")
            vcl = true;
        if (name == "seq_scaling_list_present_flag" || name == "pic_scaling_list_present_flag") {
            const std::uint32_t i = e.name.index(0);
            values[(name[0] == 's' ? "scaling_list_" : "pic_scaling_list_") + std::string(i < 6 ? "4x4[" : "8x8[") +
                   std::to_string(i % 6) + "].present"]
                .number = e.value;
        } else if (e.name.depth() == 0) {
            values[scope + e.name.name()].number = e.value;
        } else {
            values[scope + e.name.name()].entries.push_back(e.value);
        }
    }

    std::map<std::string, support::value> values;

private:
    static bool is_left_out(std::string_view structure)
    {
        return structure == "rbsp_trailing_bits" || structure == "scaling_list";
    }

    std::string scope;
    std::vector<std::string> scopes;
    int left_out = 0;
    int in_unit = 0;
    bool behind_lists = false;
    bool vcl = false;
};

} // namespace orv_utils_v4::h264
