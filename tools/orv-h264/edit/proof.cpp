#include "edit/proof.h"

#include "edit/decoding_facts.h"
#include "edit/layer_pictures.h"
#include "edit/proof_unit.h"
#include "edit/unit_bytes.h"
#include "edit/unit_editor.h"
#include "edit/wanted_changes.h"
#include "element_text.h"
#include "unit_run.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

/// The plan takes parameter sets out of the stream, so that slices may lack them.
bool deletes_sets(const edit_plan& plan)
{
    return std::any_of(plan.deletions.begin(), plan.deletions.end(), [](const unit_deletion& deletion) {
        return deletion.types.test(7) || deletion.types.test(8) || deletion.types.test(15);
    });
}

bool lacks_sets(const h264::outcome& result)
{
    return result.failure.why == h264::reason::no_pps || result.failure.why == h264::reason::no_sps;
}

/// What ends the proof.
struct contradiction {
    std::string why;
};

/// Follows the log through the input, and takes the units of the output that go with its units.
class proving final : public unit_run {
public:
    proving(const edit_plan& with, const stream_input& in, const std::string& out_path, h264::framing framing,
            const edit_log& log)
        : unit_run(in.name(), false),
          plan(with),
          done(log),
          in_container(in.in_container() != nullptr),
          wishes(with),
          output(out_path, framing, in.max_unit(), log, paths)
    {
    }

    proof run(stream_input& input)
    {
        try {
            unit_run::run(input);
            if (failed)
                std::rethrow_exception(failed);
            take_inserted();
            compare_moved_sets();
            if (at != done.size())
                throw contradiction{"units are missing at the end of the input"};
            if (output.next() != nullptr)
                throw contradiction{"the output goes on behind its last unit"};
            if (!in_container && input.bytes_read() - passed + between_before != output.bytes_behind() + between_after)
                throw contradiction{"what stands behind the last unit is not that of the input"};
            if (!in_container && !(gaps == output.gaps()))
                throw contradiction{"bytes between units are not those of the input"};
            found.holds = true;
        } catch (const contradiction& wrong) {
            found.why_not = wrong.why;
        }
        return std::move(found);
    }

private:
    bool enough() const override { return failed != nullptr; }
    void complain(const listed_unit*, std::uint64_t, const std::string&, bool) override {} // the editor has told it

    void take_gap(const h264::split_gap& gap) override
    {
        ++gaps.count;
        gaps.bytes += gap.size;
    }

    h264::visitor* before(const listed_unit&) override
    {
        try {
            take_inserted();
            if (at == done.size())
                throw contradiction{"the input has more units than were edited"};
            old = std::make_unique<proof_unit>(paths);
            if (done.at(at) == unit_fate::copied)
                return &old->digest;
            return &old->elements;
        } catch (...) {
            failed = std::current_exception();
            return nullptr;
        }
    }

    // A sink of readings may not throw.
    void take(const listed_unit& place, const h264::unit_reading* reading) override
    {
        if (failed)
            return;
        try {
            old->bytes.assign(place.place.bytes, place.place.bytes + place.place.size);
            old->framing_size = place.framing_size;
            old->zeros = place.begin() - passed;
            old->take(*reading);
            passed = place.place.offset + place.place.size;
            number = place.place.number;
            take_unit(place, *reading);
            ++at;
        } catch (...) {
            failed = std::current_exception();
        }
    }

    void take_unit(const listed_unit& place, const h264::unit_reading& reading)
    {
        const unit_fate fate = done.at(at);
        keep_old_set(reading);
        if (old->is_slice())
            compare_moved_sets();
        if (fate == unit_fate::copied)
            return take_copied(reading);
        if (fate == unit_fate::rewritten)
            return take_rewritten(reading);
        if (!may_be_deleted(place, reading))
            throw contradiction{unit_text("is left out, which nobody wants")};
        between_before += old->zeros;
        deleted_before = true;
        if (!place.in_record)
            ++found.deleted[old->type()];
        count_removed(wishes.removed_messages(reading.unit));
    }

    std::unique_ptr<proof_unit> next_of_output()
    {
        std::unique_ptr<proof_unit> unit = output.next();
        if (unit == nullptr)
            throw contradiction{"the output ends before its last unit"};
        return unit;
    }

    void take_copied(const h264::unit_reading& reading)
    {
        const std::unique_ptr<proof_unit> now = next_of_output();
        const bool same_bytes = now->bytes == old->bytes;
        if (!same_bytes && !(in_container && unescaped(reading.place) == clean_of(*now)))
            throw contradiction{unit_text("does not have its bytes any more")};
        check_framing(*now);
        ++found.copied;
        ++found.units;
        if (old->is_slice())
            ++found.slices;
        if (old->result.failure || (lacks_sets(now->result) && deletes_sets(plan))) {
            ++found.bytes_alone;
            return;
        }
        if (now->result.failure || now->digest.hash != old->digest.hash || now->digest.count != old->digest.count)
            throw contradiction{unit_text("has its bytes, and reads otherwise")};
        found.elements += now->digest.count;
        compare_decoding(*now);
    }

    /// What stood between units of the input stands between them in the output, before or behind what came in or went;
    /// and the first unit of a picture has a start code of four bytes (B.1.2).
    void check_framing(const proof_unit& now)
    {
        const std::uint64_t before = old->zeros + std::exchange(between_before, 0);
        const std::uint64_t after = now.zeros + std::exchange(between_after, 0);
        const bool as_it_was = after == before && now.framing_size == old->framing_size;
        const bool longer = now.framing_size == 4 && old->framing_size == 3 && (after == before || after + 1 == before);
        const bool behind_deleted = std::exchange(deleted_before, false);
        if (!in_container && !as_it_was && !(behind_deleted && longer))
            throw contradiction{unit_text("does not have its framing any more")};
    }

    void take_rewritten(const h264::unit_reading& reading)
    {
        const std::unique_ptr<proof_unit> now = next_of_output();
        check_hash(*now);
        check_framing(*now);
        if (old->result.failure || now->result.failure)
            throw contradiction{unit_text("cannot be read")};
        const std::vector<bool> removed = wishes.removed_messages(reading.unit);
        comparison_terms terms;
        terms.wanted = wishes.of({reading, old->elements, number});
        terms.other_sets = (sets_differ || !moved.empty()) && stands_on_sets(old->type());
        terms.slice = old->is_slice();
        terms.force = plan.force;
        add(compare_units(old->elements, now->elements, removed, terms));
        const std::vector<unsigned char> before = unescaped(reading.place);
        const std::vector<unsigned char> after = clean_of(*now);
        if (old->is_slice() && !same_data(before, old->result.bits, after, now->result.bits))
            throw contradiction{unit_text("does not have its slice data any more")};
        if (!old->is_slice() && tail(before, old->result.bits) != tail(after, now->result.bits))
            throw contradiction{unit_text("ends otherwise")};
        found.slices += old->is_slice() ? 1 : 0;
        ++found.rewritten;
        ++found.units;
        count_removed(removed);
        compare_decoding(*now);
        sets_differ = sets_differ || is_parameter_set(old->type());
    }

    void add(const comparison& compared)
    {
        if (const difference* const wrong = compared.forbidden())
            throw contradiction{unit_text(text_of(*wrong).c_str())};
        for (const difference& d : compared.differences)
            found.changes.add(d, number);
        found.elements += compared.compared;
    }

    /// Units of the output that no unit of the input goes with.
    void take_inserted()
    {
        for (; at < done.size() && done.at(at) == unit_fate::inserted; ++at) {
            std::unique_ptr<proof_unit> now = next_of_output();
            check_hash(*now);
            between_after += now->zeros;
            ++found.inserted[now->type()];
            if (is_parameter_set(now->type()))
                moved.push_back(std::move(now));
        }
    }

    /// Sets that came in are the latest of their ids up to the slices behind them: those of their own picture, too,
    /// which stood behind their new place.
    void compare_moved_sets()
    {
        for (const std::unique_ptr<proof_unit>& now : std::exchange(moved, {})) {
            const auto set = old_sets.find(set_key(now->unit));
            if (set == old_sets.end())
                continue; // one that the user brings
            comparison_terms terms;
            terms.wanted = set->second.wanted;
            terms.other_sets = true;
            const comparison compared = compare_units(set->second.unit->elements, now->elements, {}, terms);
            sets_differ = sets_differ || !compared.differences.empty();
            add(compared);
        }
    }

    void check_hash(const proof_unit& now)
    {
        if (hash_of(now.bytes.data(), now.bytes.size()) != done.hash_at(hashed++))
            throw contradiction{fmt::format("a unit of type {} is not as it was written", now.type())};
    }

    bool may_be_deleted(const listed_unit& place, const h264::unit_reading& reading)
    {
        const bool set_moves = is_parameter_set(old->type()) && (plan.repeat_headers || in_container);
        if (place.in_record || set_moves || wishes.deletes({reading, old->elements, number}))
            return true;
        const std::vector<bool> removed = wishes.removed_messages(reading.unit);
        return removed.size() > 1 && std::all_of(removed.begin() + 1, removed.end(), [](bool gone) { return gone; });
    }

    void count_removed(const std::vector<bool>& removed)
    {
        const auto* const sei = std::get_if<h264::sei_rbsp>(&old->unit.rbsp);
        for (std::size_t i = 1; sei != nullptr && i < removed.size(); ++i)
            if (removed[i])
                ++found.removed_messages[sei->sei_messages[i - 1].payload_type];
    }

    /// The pictures count as they did, and the data of the slice are decoded with the same values.
    void compare_decoding(const proof_unit& now)
    {
        const h264::slice_header* const before = h264::slice_header_of(old->unit);
        const h264::slice_header* const after = h264::slice_header_of(now.unit);
        if (plan.force || before == nullptr || after == nullptr || old->sets == nullptr || now.sets == nullptr)
            return;
        if (const decoding_fact* const fact =
                first_difference({old->unit.header, *before, old->sets->pps, old->sets->sps},
                                 {now.unit.header, *after, now.sets->pps, now.sets->sps}))
            throw contradiction{unit_text(fmt::format("has another {}", fact->name).c_str())};
        const auto idr = [](const proof_unit& u) {
            return u.type() == 19 ? u.primary_idr : h264::IdrPicFlag(u.unit.header);
        };
        layer_pictures& counted = numbers[layer_key(old->unit.header)];
        counted.see({old->sets->sps, old->sets->pps, *before, old->unit.header.nal_ref_idc, idr(*old)});
        if (const auto wrong =
                counted.numbers.compare({now.sets->sps, now.sets->pps, *after, now.unit.header.nal_ref_idc, idr(now)}))
            throw contradiction{unit_text(wrong->c_str())};
    }

    struct old_set {
        std::unique_ptr<proof_unit> unit;
        std::vector<element_value> wanted;
    };

    static std::pair<unsigned, std::uint32_t> set_key(const h264::nal_unit& unit)
    {
        const unsigned type = unit.header.nal_unit_type;
        if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&unit.rbsp))
            return {type, pps->pic_parameter_set_id};
        if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&unit.rbsp))
            return {type, sps->seq_parameter_set_data.seq_parameter_set_id};
        if (const auto* const extension = std::get_if<h264::seq_parameter_set_extension_rbsp>(&unit.rbsp))
            return {type, extension->seq_parameter_set_id};
        const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&unit.rbsp);
        return {type, subset == nullptr ? ~0U : subset->seq_parameter_set_data.seq_parameter_set_id};
    }

    /// For sets that come before pictures later on.
    void keep_old_set(const h264::unit_reading& reading)
    {
        using h264::set_arrival;
        if (!is_parameter_set(old->type()) || old->result.failure || (!plan.repeat_headers && !in_container))
            return;
        const set_arrival arrival = kept_sets.push(reading.place);
        if (arrival != set_arrival::added && arrival != set_arrival::changed && arrival != set_arrival::same)
            return;
        old_set& slot = old_sets[set_key(old->unit)];
        slot.unit = std::make_unique<proof_unit>(paths);
        retrace(reading, slot.unit->elements);
        slot.wanted = wishes.of({reading, slot.unit->elements, number});
    }

    static std::vector<unsigned char> clean_of(const proof_unit& unit)
    {
        return unescaped({unit.bytes.data(), unit.bytes.size(), 0, 0});
    }
    static std::vector<unsigned char> tail(const std::vector<unsigned char>& clean, std::uint64_t bits)
    {
        const auto end = std::min<std::uint64_t>((bits + 7) / 8, clean.size());
        return {clean.begin() + static_cast<std::ptrdiff_t>(end), clean.end()};
    }
    std::string unit_text(const char* what) const { return fmt::format("unit {} {}", number, what); }

    const edit_plan& plan;
    const edit_log& done;
    bool in_container;
    wanted_changes wishes;
    path_table paths;
    output_reader output;
    proof found;
    std::unique_ptr<proof_unit> old;
    h264::parameter_set_store kept_sets;
    std::vector<std::unique_ptr<proof_unit>> moved; // parameter sets that came in, not compared yet
    std::map<std::pair<unsigned, std::uint32_t>, old_set> old_sets;
    std::map<std::uint32_t, layer_pictures> numbers;
    std::exception_ptr failed;
    gap_sum gaps;
    std::uint64_t between_before = 0; // bytes before units that were deleted
    std::uint64_t between_after = 0;  // and before those that were inserted
    bool deleted_before = false;
    std::size_t at = 0;     // of the log
    std::size_t hashed = 0; // of its hashes
    std::uint64_t passed = 0;
    std::uint64_t number = 0;
    bool sets_differ = false;
};

} // namespace

proof prove(const edit_plan& plan, const stream_options& in, const std::string& out_path, h264::framing framing,
            const edit_log& log)
{
    stream_input input(in);
    return proving(plan, input, out_path, framing, log).run(input);
}

} // namespace orv_h264::editing
