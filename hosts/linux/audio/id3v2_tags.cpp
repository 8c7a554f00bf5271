#include "id3v2_tags.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <taglib/commentsframe.h>
#include <taglib/id3v1genres.h>
#include <taglib/textidentificationframe.h>

#include "field_table.h"
#include "taglib_text.h"

namespace linux_audio {

namespace {

using TagLib::ID3v2::CommentsFrame;
using TagLib::ID3v2::Frame;
using TagLib::ID3v2::TextIdentificationFrame;
using TagLib::ID3v2::UserTextIdentificationFrame;

TagLib::String from_utf8(const std::string& s) { return TagLib::String(s, TagLib::String::UTF8); }

// ID3v2 allows one comment frame per language and description, so the first comment value
// has no description and the n-th (n >= 2) is described "comment n".
std::string comment_description(std::size_t n) { return n <= 1 ? std::string() : "comment " + std::to_string(n); }

// The position (1-based) of a comment written as above; 0 for a description of someone else's
// (players keep their own data in described comments, which are not the user's comments).
std::size_t comment_position(const std::string& description) {
    if (description.empty()) return 1;
    const std::string prefix = "comment ";
    if (description.size() <= prefix.size() || description.compare(0, prefix.size(), prefix) != 0) return 0;
    std::size_t n = 0;
    for (std::size_t i = prefix.size(); i < description.size(); ++i) {
        if (description[i] < '0' || description[i] > '9' || n > 100000) return 0;
        n = n * 10 + static_cast<std::size_t>(description[i] - '0');
    }
    return n >= 2 ? n : 0;
}

// "n/N" of TRCK and TPOS; either part may be missing.
struct number_pair {
    std::string number, total;
};

number_pair split_pair(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) return {text, {}};
    return {text.substr(0, slash), text.substr(slash + 1)};
}

// Genres written as ID3v1 genre numbers ("17", or "(17)" from older writers) by name.
std::string genre_text(const std::string& value) {
    std::string digits = value;
    if (digits.size() > 2 && digits.front() == '(' && digits.back() == ')') digits = digits.substr(1, digits.size() - 2);
    if (digits.empty() || digits.size() > 3 || !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return value;
    const TagLib::String name = TagLib::ID3v1::genre(std::stoi(digits));
    return name.isEmpty() ? value : utf8_of(name);
}

// The frame id a field outside the table is written under: its own name when that is a text
// frame id (read back from a frame of that id), otherwise a user text frame.
bool is_text_frame_id(const std::string& name) {
    if (name.size() != 4 || name[0] != 'T' || name == "TXXX") return false;
    if (!host_name_of_id3v2_frame(name).empty() || name == "TRCK" || name == "TPOS") return false;
    return std::all_of(name.begin(), name.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

bool is_field_frame(const Frame* frame) {
    if (dynamic_cast<const TextIdentificationFrame*>(frame)) return true;
    auto* comment = dynamic_cast<const CommentsFrame*>(frame);
    return comment && comment_position(utf8_of(comment->description())) != 0;
}

void add_text_frame(TagLib::ID3v2::Tag& tag, const std::string& id, const TagLib::StringList& values) {
    auto* frame = new TextIdentificationFrame(TagLib::ByteVector(id.c_str(), 4), TagLib::String::UTF8);
    frame->setText(values);
    tag.addFrame(frame);
}

// The first value of field `name`, or empty.
std::string first_of(const tag_record& tags, const char* name) {
    const char* v = tags.first_value(name);
    return v ? v : "";
}

void add_pair_frame(TagLib::ID3v2::Tag& tag, const char* id, const tag_record& tags, const char* number_name,
                    const char* total_name) {
    if (tags.find_field(number_name) == tag_record::npos && tags.find_field(total_name) == tag_record::npos) return;
    const std::string number = first_of(tags, number_name);
    const std::string total = first_of(tags, total_name);
    add_text_frame(tag, id, TagLib::StringList(from_utf8(total.empty() ? number : number + "/" + total)));
}

} // namespace

tag_record read_id3v2(const TagLib::ID3v2::Tag& tag) {
    tag_record tags;
    std::vector<std::pair<std::size_t, std::string>> comments;
    for (const Frame* frame : tag.frameList()) {
        const std::string id(frame->frameID().data(), frame->frameID().size());
        if (auto* user = dynamic_cast<const UserTextIdentificationFrame*>(frame)) {
            // The frame's field list starts with its description.
            const TagLib::StringList fields = user->fieldList();
            const std::string name = utf8_of(user->description());
            for (auto it = std::next(fields.begin()); it != fields.end(); ++it) tags.add_tag_value(name.c_str(), utf8_of(*it));
        } else if (auto* text = dynamic_cast<const TextIdentificationFrame*>(frame)) {
            for (const TagLib::String& value : text->fieldList()) {
                const std::string v = utf8_of(value);
                if (id == "TRCK" || id == "TPOS") {
                    const number_pair pair = split_pair(v);
                    const bool track = id == "TRCK";
                    if (!pair.number.empty()) tags.add_tag_value(track ? "tracknumber" : "discnumber", pair.number);
                    if (!pair.total.empty()) tags.add_tag_value(track ? "totaltracks" : "totaldiscs", pair.total);
                } else if (id == "TCON") {
                    tags.add_tag_value("genre", genre_text(v));
                } else {
                    const std::string_view host = host_name_of_id3v2_frame(id);
                    tags.add_tag_value(host.empty() ? id.c_str() : std::string(host).c_str(), v);
                }
            }
        } else if (auto* comment = dynamic_cast<const CommentsFrame*>(frame)) {
            if (const std::size_t n = comment_position(utf8_of(comment->description())))
                comments.emplace_back(n, utf8_of(comment->text()));
        }
    }
    // Comments in the order they were written, whatever order the frames are stored in.
    std::stable_sort(comments.begin(), comments.end(), [](auto& a, auto& b) { return a.first < b.first; });
    for (auto& [n, text] : comments) tags.add_tag_value("comment", text);
    return in_table_order(tags);
}

void write_id3v2(TagLib::ID3v2::Tag& tag, const tag_record& tags) {
    std::vector<Frame*> old;
    for (Frame* frame : tag.frameList())
        if (is_field_frame(frame)) old.push_back(frame);
    for (Frame* frame : old) tag.removeFrame(frame);

    add_pair_frame(tag, "TRCK", tags, "tracknumber", "totaltracks");
    add_pair_frame(tag, "TPOS", tags, "discnumber", "totaldiscs");
    for (std::size_t i = 0; i < tags.field_count(); ++i) {
        const std::string& name = tags.field_name(i);
        TagLib::StringList values;
        for (std::size_t v = 0; v < tags.value_count(i); ++v) values.append(from_utf8(tags.value(i, v)));

        const field_names* known = find_host_field(name);
        if (known) {
            if (!known->written || known->id3v2 == "TRCK" || known->id3v2 == "TPOS") continue;
            if (known->id3v2 == "COMM") {
                for (std::size_t v = 0; v < values.size(); ++v) {
                    auto* frame = new CommentsFrame(TagLib::String::UTF8);
                    frame->setLanguage("eng");  // the language readers look for first
                    frame->setDescription(from_utf8(comment_description(v + 1)));
                    frame->setText(values[static_cast<unsigned>(v)]);
                    tag.addFrame(frame);
                }
            } else {
                add_text_frame(tag, std::string(known->id3v2), values);
            }
        } else if (is_text_frame_id(name)) {
            add_text_frame(tag, name, values);
        } else {
            tag.addFrame(new UserTextIdentificationFrame(from_utf8(name), values, TagLib::String::UTF8));
        }
    }
}

} // namespace linux_audio
