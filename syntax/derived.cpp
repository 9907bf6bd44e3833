// Values that follow from the parameter sets, by clause.
#include <orv-utils-v4/h264_syntax/derived.h>

#include "coders/coder.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace orv_utils_v4::h264 {

namespace {

// H.264 Table A-1, by level_idc; 9 is level 1b
struct level_row {
    std::uint8_t level_idc;
    level_limits limits;
};
constexpr level_row levels[] = {
    {9, {"1b", 1485, 99, 396, 128, 350, 64, 2, 0}},
    {10, {"1", 1485, 99, 396, 64, 175, 64, 2, 0}},
    {11, {"1.1", 3000, 396, 900, 192, 500, 128, 2, 0}},
    {12, {"1.2", 6000, 396, 2376, 384, 1000, 128, 2, 0}},
    {13, {"1.3", 11880, 396, 2376, 768, 2000, 128, 2, 0}},
    {20, {"2", 11880, 396, 2376, 2000, 2000, 128, 2, 0}},
    {21, {"2.1", 19800, 792, 4752, 4000, 4000, 256, 2, 0}},
    {22, {"2.2", 20250, 1620, 8100, 4000, 4000, 256, 2, 0}},
    {30, {"3", 40500, 1620, 8100, 10000, 10000, 256, 2, 32}},
    {31, {"3.1", 108000, 3600, 18000, 14000, 14000, 512, 4, 16}},
    {32, {"3.2", 216000, 5120, 20480, 20000, 20000, 512, 4, 16}},
    {40, {"4", 245760, 8192, 32768, 20000, 25000, 512, 4, 16}},
    {41, {"4.1", 245760, 8192, 32768, 50000, 62500, 512, 2, 16}},
    {42, {"4.2", 522240, 8704, 34816, 50000, 62500, 512, 2, 16}},
    {50, {"5", 589824, 22080, 110400, 135000, 135000, 512, 2, 16}},
    {51, {"5.1", 983040, 36864, 184320, 240000, 240000, 512, 2, 16}},
    {52, {"5.2", 2073600, 36864, 184320, 240000, 240000, 512, 2, 16}},
    {60, {"6", 4177920, 139264, 696320, 240000, 240000, 8192, 2, 16}},
    {61, {"6.1", 8355840, 139264, 696320, 480000, 480000, 8192, 2, 16}},
    {62, {"6.2", 16711680, 139264, 696320, 800000, 800000, 8192, 2, 16}},
};

/// The rows by level_idc, counted from 1; 0 is no level.
constexpr auto row_of_level = [] {
    std::array<std::uint8_t, 256> rows = {};
    for (std::size_t i = 0; i < std::size(levels); ++i)
        rows[levels[i].level_idc] = static_cast<std::uint8_t>(i + 1);
    return rows;
}();

// H.264 Table E-1
constexpr ratio aspect_ratios[] = {{0, 0},   {1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33},
                                   {24, 11}, {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11},
                                   {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1}};

ratio sound(std::uint64_t numerator, std::uint64_t denominator)
{
    return numerator == 0 || denominator == 0 ? ratio() : ratio{numerator, denominator};
}

// H.264 Tables 7-3 and 7-4
constexpr std::uint8_t Default_4x4[2][16] = {{6, 13, 13, 20, 20, 20, 28, 28, 28, 28, 32, 32, 32, 37, 37, 42},
                                             {10, 14, 14, 20, 20, 20, 24, 24, 24, 24, 27, 27, 27, 30, 30, 34}};
constexpr std::uint8_t Default_8x8[2][64] = {
    {6,  10, 10, 13, 11, 13, 16, 16, 16, 16, 18, 18, 18, 18, 18, 23, 23, 23, 23, 23, 23, 25,
     25, 25, 25, 25, 25, 25, 27, 27, 27, 27, 27, 27, 27, 27, 29, 29, 29, 29, 29, 29, 29, 31,
     31, 31, 31, 31, 31, 33, 33, 33, 33, 33, 36, 36, 36, 36, 38, 38, 38, 40, 40, 42},
    {9,  13, 13, 15, 13, 15, 17, 17, 17, 17, 19, 19, 19, 19, 19, 21, 21, 21, 21, 21, 21, 22,
     22, 22, 22, 22, 22, 22, 24, 24, 24, 24, 24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 27,
     27, 27, 27, 27, 27, 28, 28, 28, 28, 28, 30, 30, 30, 30, 32, 32, 32, 33, 33, 35}};

// The lists i of both sizes as one row: 0 to 5 are 4x4, 6 to 11 are 8x8.
std::uint8_t* list_of(scaling_lists& lists, unsigned i)
{
    return i < 6 ? lists.list_4x4[i] : lists.list_8x8[i - 6];
}

unsigned size_of_list(unsigned i)
{
    return i < 6 ? 16 : 64;
}

// H.264 7.3.2.1.1.1: false where the list says that the default is meant
bool expand(const scaling_list& sent, unsigned size, std::uint8_t* list)
{
    int lastScale = 8;
    int nextScale = 8;
    for (unsigned j = 0, taken = 0; j < size; ++j) {
        if (nextScale != 0 && taken < sent.delta_scale.size()) {
            nextScale = (lastScale + sent.delta_scale[taken++] + 256) % 256;
            if (j == 0 && nextScale == 0)
                return false;
        }
        lastScale = nextScale == 0 ? lastScale : nextScale;
        list[j] = static_cast<std::uint8_t>(lastScale);
    }
    return true;
}

// H.264 Table 7-2; the first of each kind falls back on `basis`, the others on the list before theirs
void fall_back(scaling_lists& lists, unsigned i, const scaling_lists* basis)
{
    std::uint8_t* const list = list_of(lists, i);
    const bool first = i < 6 ? i % 3 == 0 : i < 8;
    const bool inter = i < 6 ? i >= 3 : i % 2 == 1;
    const std::uint8_t* from = i < 6 ? Default_4x4[inter] : Default_8x8[inter];
    if (!first)
        from = list_of(lists, i < 6 ? i - 1 : i - 2);
    else if (basis != nullptr)
        from = i < 6 ? basis->list_4x4[i] : basis->list_8x8[i - 6];
    std::copy(from, from + size_of_list(i), list);
}

/// The lists of a matrix that was sent; `basis` is that of fall-back rule B, or null for rule A.
scaling_lists lists_sent(const bool* present, const scaling_list* sent, const scaling_lists* basis)
{
    scaling_lists lists;
    for (unsigned i = 0; i < seq_parameter_set_data::most_scaling_lists; ++i) {
        std::uint8_t* const list = list_of(lists, i);
        const bool inter = i < 6 ? i >= 3 : i % 2 == 1;
        if (!present[i])
            fall_back(lists, i, basis);
        else if (!expand(sent[i], size_of_list(i), list))
            std::copy_n(i < 6 ? Default_4x4[inter] : Default_8x8[inter], size_of_list(i), list);
    }
    return lists;
}

// H.264 8.2.2.1
void map_interleaved(const pic_parameter_set_rbsp& pps, std::uint8_t* map, std::uint64_t size)
{
    for (std::uint64_t i = 0, group = 0; i < size; group = (group + 1) % (pps.num_slice_groups_minus1 + 1)) {
        const std::uint64_t end = std::min(size, i + pps.run_length_minus1[group] + 1);
        std::fill(map + i, map + end, static_cast<std::uint8_t>(group));
        i = end;
    }
}

// H.264 8.2.2.2
void map_dispersed(const pic_parameter_set_rbsp& pps, std::uint8_t* map, std::uint64_t size, std::uint64_t width)
{
    const std::uint64_t groups = std::uint64_t{pps.num_slice_groups_minus1} + 1;
    for (std::uint64_t i = 0; i < size; ++i)
        map[i] = static_cast<std::uint8_t>((i % width + (i / width * groups) / 2) % groups);
}

// H.264 8.2.2.3
void map_foreground(const pic_parameter_set_rbsp& pps, std::uint8_t* map, std::uint64_t size, std::uint64_t width)
{
    std::fill(map, map + size, static_cast<std::uint8_t>(pps.num_slice_groups_minus1));
    for (std::uint32_t above = pps.num_slice_groups_minus1; above > 0; --above) {
        const std::uint32_t group = above - 1;
        const std::uint64_t top_left = pps.top_left[group];
        const std::uint64_t bottom_right = std::min<std::uint64_t>(pps.bottom_right[group], size - 1);
        for (std::uint64_t y = top_left / width; y <= bottom_right / width; ++y) {
            for (std::uint64_t x = top_left % width; x <= bottom_right % width; ++x)
                map[y * width + x] = static_cast<std::uint8_t>(group);
        }
    }
}

// H.264 8.2.2.4
void map_box_out(bool direction, std::uint64_t units_in_group_0, std::uint8_t* map, std::int64_t width,
                 std::int64_t height)
{
    const int dir = direction ? 1 : 0;
    std::fill(map, map + width * height, std::uint8_t{1});
    std::int64_t x = (width - dir) / 2;
    std::int64_t y = (height - dir) / 2;
    std::int64_t leftBound = x;
    std::int64_t rightBound = x;
    std::int64_t topBound = y;
    std::int64_t bottomBound = y;
    int xDir = dir - 1;
    int yDir = dir;
    for (std::uint64_t k = 0; k < units_in_group_0;) {
        std::uint8_t& unit = map[y * width + x];
        k += unit;
        unit = 0;
        if (xDir == -1 && x == leftBound) {
            x = leftBound = std::max<std::int64_t>(leftBound - 1, 0);
            xDir = 0;
            yDir = 2 * dir - 1;
        } else if (xDir == 1 && x == rightBound) {
            x = rightBound = std::min(rightBound + 1, width - 1);
            xDir = 0;
            yDir = 1 - 2 * dir;
        } else if (yDir == -1 && y == topBound) {
            y = topBound = std::max<std::int64_t>(topBound - 1, 0);
            xDir = 1 - 2 * dir;
            yDir = 0;
        } else if (yDir == 1 && y == bottomBound) {
            y = bottomBound = std::min(bottomBound + 1, height - 1);
            xDir = 2 * dir - 1;
            yDir = 0;
        } else {
            x += xDir;
            y += yDir;
        }
    }
}

// H.264 8.2.2.5 and 8.2.2.6: the units of the upper left group in raster order, or column by column
void map_evolving(const pic_parameter_set_rbsp& pps, std::uint64_t units_in_group_0, std::uint8_t* map,
                  std::uint64_t size, std::uint64_t width)
{
    const bool direction = pps.slice_group_change_direction_flag;
    const std::uint64_t sizeOfUpperLeftGroup = direction ? size - units_in_group_0 : units_in_group_0;
    const std::uint64_t height = size / width;
    for (std::uint64_t k = 0; k < size; ++k) {
        const std::uint64_t i = pps.slice_group_map_type == 4 ? k : k % height * width + k / height;
        map[i] = (k < sizeOfUpperLeftGroup) == direction ? 1 : 0;
    }
}

} // namespace

picture_size coded_size(const seq_parameter_set_data& sps) noexcept
{
    return {16 * PicWidthInMbs(sps), 16 * FrameHeightInMbs(sps)};
}

picture_size cropped_size(const seq_parameter_set_data& sps) noexcept
{
    const picture_size whole = coded_size(sps);
    const picture_size unit = chroma_subsampling(sps);
    const std::uint64_t CropUnitY = unit.height * (sps.frame_mbs_only_flag ? 1 : 2);
    const std::uint64_t columns =
        unit.width * (std::uint64_t{sps.frame_crop_left_offset} + sps.frame_crop_right_offset);
    const std::uint64_t rows = CropUnitY * (std::uint64_t{sps.frame_crop_top_offset} + sps.frame_crop_bottom_offset);
    if (columns >= whole.width || rows >= whole.height)
        return {};
    return {whole.width - columns, whole.height - rows};
}

ratio sample_aspect_ratio(const vui_parameters& vui) noexcept
{
    constexpr std::uint8_t Extended_SAR = 255;
    if (vui.aspect_ratio_idc == Extended_SAR)
        return sound(vui.sar_width, vui.sar_height);
    return vui.aspect_ratio_idc < std::size(aspect_ratios) ? aspect_ratios[vui.aspect_ratio_idc] : ratio();
}

ratio field_rate(const vui_parameters& vui) noexcept
{
    return sound(vui.time_scale, vui.num_units_in_tick);
}

ratio frame_rate(const vui_parameters& vui) noexcept
{
    return sound(vui.time_scale, 2 * std::uint64_t{vui.num_units_in_tick});
}

picture_size chroma_subsampling(const seq_parameter_set_data& sps) noexcept
{
    const std::uint32_t format = ChromaArrayType(sps);
    return {format == 1 || format == 2 ? 2U : 1U, format == 1 ? 2U : 1U};
}

const level_limits* limits_of_level(const seq_parameter_set_data& sps) noexcept
{
    const bool old_profile = sps.profile_idc == 66 || sps.profile_idc == 77 || sps.profile_idc == 88;
    std::uint8_t level_idc = sps.level_idc;
    if (old_profile && level_idc == 11 && sps.constraint_set3_flag)
        level_idc = 9;
    const std::uint8_t row = row_of_level[level_idc];
    return row != 0 ? &levels[row - 1].limits : nullptr;
}

std::uint32_t MaxDpbFrames(const seq_parameter_set_data& sps) noexcept
{
    constexpr std::uint32_t most = 16;
    const level_limits* const limits = limits_of_level(sps);
    if (limits == nullptr)
        return most;
    const std::uint64_t size = PicSizeInMbs(sps, false);
    if (size > limits->MaxDpbMbs)
        return 0;
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): a picture has a macroblock at the least
    return std::min(most, limits->MaxDpbMbs / static_cast<std::uint32_t>(size)); // 32 bits are divided sooner than 64
}

std::uint32_t inferred_reorder_frames(const seq_parameter_set_data& sps) noexcept
{
    constexpr std::uint8_t intra_profiles[] = {44, 86, 100, 110, 122, 244};
    const bool intra = sps.constraint_set3_flag && std::find(std::begin(intra_profiles), std::end(intra_profiles),
                                                             sps.profile_idc) != std::end(intra_profiles);
    return intra ? 0 : MaxDpbFrames(sps);
}

const char* profile_name(const seq_parameter_set_data& sps) noexcept
{
    switch (sps.profile_idc) {
    case 44:
        return "CAVLC 4:4:4 Intra";
    case 66:
        return sps.constraint_set1_flag ? "Constrained Baseline" : "Baseline";
    case 77:
        return "Main";
    case 83:
        return sps.constraint_set5_flag ? "Scalable Constrained Baseline" : "Scalable Baseline";
    case 86:
        if (sps.constraint_set3_flag)
            return "Scalable High Intra";
        return sps.constraint_set5_flag ? "Scalable Constrained High" : "Scalable High";
    case 88:
        return "Extended";
    case 100:
        if (!sps.constraint_set4_flag)
            return "High";
        return sps.constraint_set5_flag ? "Constrained High" : "Progressive High";
    case 110:
        if (sps.constraint_set3_flag)
            return "High 10 Intra";
        return sps.constraint_set4_flag ? "Progressive High 10" : "High 10";
    case 118:
        return "Multiview High";
    case 122:
        return sps.constraint_set3_flag ? "High 4:2:2 Intra" : "High 4:2:2";
    case 128:
        return "Stereo High";
    case 134:
        return "MFC High";
    case 135:
        return "MFC Depth High";
    case 138:
        return "Multiview Depth High";
    case 139:
        return "Enhanced Multiview Depth High";
    case 244:
        return sps.constraint_set3_flag ? "High 4:4:4 Intra" : "High 4:4:4 Predictive";
    default:
        return "";
    }
}

std::array<char, 12> codec_string(const seq_parameter_set_data& sps) noexcept
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::array<char, 12> text = {'a', 'v', 'c', '1', '.'};
    unsigned flags = sps.reserved_zero_2bits & 3U;
    const bool constraints[] = {sps.constraint_set5_flag, sps.constraint_set4_flag, sps.constraint_set3_flag,
                                sps.constraint_set2_flag, sps.constraint_set1_flag, sps.constraint_set0_flag};
    for (unsigned i = 0; i < std::size(constraints); ++i)
        flags |= (constraints[i] ? 4U : 0U) << i;
    std::size_t at = 5;
    for (const unsigned byte : {unsigned{sps.profile_idc}, flags, unsigned{sps.level_idc}}) {
        text[at++] = digits[byte >> 4];
        text[at++] = digits[byte & 15];
    }
    return text;
}

scaling_lists scaling_lists_of(const seq_parameter_set_data& sps, const pic_parameter_set_rbsp* pps) noexcept
{
    constexpr std::uint8_t Flat = 16;
    scaling_lists of_sps;
    if (sps.seq_scaling_matrix_present_flag) {
        of_sps = lists_sent(sps.seq_scaling_list_present_flag, sps.lists, nullptr);
    } else {
        std::fill(&of_sps.list_4x4[0][0], &of_sps.list_4x4[0][0] + sizeof of_sps.list_4x4, Flat);
        std::fill(&of_sps.list_8x8[0][0], &of_sps.list_8x8[0][0] + sizeof of_sps.list_8x8, Flat);
    }
    if (pps == nullptr || !pps->pic_scaling_matrix_present_flag)
        return of_sps;
    return lists_sent(pps->pic_scaling_list_present_flag, pps->lists,
                      sps.seq_scaling_matrix_present_flag ? &of_sps : nullptr);
}

bool slice_group_map(const seq_parameter_set_data& sps, const pic_parameter_set_rbsp& pps,
                     std::uint32_t slice_group_change_cycle, std::uint8_t* map, std::size_t room) noexcept
{
    const std::uint64_t size = PicSizeInMapUnits(sps);
    const std::uint64_t width = PicWidthInMbs(sps);
    const bool groups = pps.num_slice_groups_minus1 > 0;
    if (room < size || pps.num_slice_groups_minus1 >= pic_parameter_set_rbsp::most_slice_groups ||
        (groups && pps.slice_group_map_type == 6 && pps.slice_group_id.size() < size))
        return false;
    const std::uint64_t change_rate = std::uint64_t{pps.slice_group_change_rate_minus1} + 1;
    const std::uint64_t mapUnitsInSliceGroup0 =
        slice_group_change_cycle > size / change_rate ? size : std::min(size, slice_group_change_cycle * change_rate);
    if (!groups || pps.slice_group_map_type > 6)
        std::fill(map, map + size, std::uint8_t{0});
    else if (pps.slice_group_map_type == 0)
        map_interleaved(pps, map, size);
    else if (pps.slice_group_map_type == 1)
        map_dispersed(pps, map, size, width);
    else if (pps.slice_group_map_type == 2)
        map_foreground(pps, map, size, width);
    else if (pps.slice_group_map_type == 3)
        map_box_out(pps.slice_group_change_direction_flag, mapUnitsInSliceGroup0, map, static_cast<std::int64_t>(width),
                    static_cast<std::int64_t>(size / width));
    else if (pps.slice_group_map_type <= 5)
        map_evolving(pps, mapUnitsInSliceGroup0, map, size, width);
    else
        std::copy_n(pps.slice_group_id.begin(), size, map);
    return true;
}

unsigned slice_group_id_bits(const pic_parameter_set_rbsp& pps) noexcept
{
    return Ceil_Log2(std::uint64_t{pps.num_slice_groups_minus1} + 1);
}

std::uint64_t highest_slice_group_change_cycle(const seq_parameter_set_data& sps,
                                               const pic_parameter_set_rbsp& pps) noexcept
{
    const std::uint64_t SliceGroupChangeRate = std::uint64_t{pps.slice_group_change_rate_minus1} + 1;
    const std::uint64_t size = PicSizeInMapUnits(sps);
    return size / SliceGroupChangeRate + (size % SliceGroupChangeRate != 0 ? 1 : 0);
}

unsigned slice_group_change_cycle_bits(const seq_parameter_set_data& sps, const pic_parameter_set_rbsp& pps) noexcept
{
    return Ceil_Log2(highest_slice_group_change_cycle(sps, pps) + 1);
}

const hrd_parameters* timing_hrd(const vui_parameters& vui) noexcept
{
    if (vui.nal_hrd_parameters_present_flag)
        return &vui.nal_hrd_parameters;
    return vui.vcl_hrd_parameters_present_flag ? &vui.vcl_hrd_parameters : nullptr;
}

} // namespace orv_utils_v4::h264
