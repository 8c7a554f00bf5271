#include "audio_file.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include <taglib/flacfile.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2tag.h>
#include <taglib/infotag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>

#include <hostkit/file_util.h>
#include <tunehall/exceptions.h>

#include "field_table.h"
#include "id3v2_tags.h"
#include "mp4_tags.h"
#include "vorbis_comment_tags.h"

using namespace linux_audio;

namespace {

enum class audio_format { flac, mp3, ogg, opus, wav, mp4 };

// The file types read here, by extension (compared in lower case).
struct typed_extension {
    std::string_view extension;
    audio_format format;
};
constexpr typed_extension typed_extensions[] = {
    {".flac", audio_format::flac}, {".mp3", audio_format::mp3}, {".ogg", audio_format::ogg},
    {".opus", audio_format::opus}, {".wav", audio_format::wav}, {".m4a", audio_format::mp4},
};

std::optional<audio_format> format_of(const std::string& path) {
    const std::string extension = lower_ascii(hostkit::path_utf8(hostkit::utf8_path(path).extension()));
    for (const typed_extension& t : typed_extensions)
        if (t.extension == extension) return t.format;
    return std::nullopt;
}

[[noreturn]] void fail_unreadable(const std::string& path) {
    throw tunehall_io::exception_io_data("Unsupported format or corrupted file: " + path);
}

void require_regular_file(const std::string& path) {
    std::error_code ec;
    const auto status = std::filesystem::status(hostkit::utf8_path(path), ec);
    if (!std::filesystem::exists(status)) throw tunehall_io::exception_io_not_found("File not found: " + path);
    if (!std::filesystem::is_regular_file(status)) fail_unreadable(path);
}

// An opened file of a known format; the format decides which TagLib class it is.
struct opened_file {
    audio_format format;
    std::unique_ptr<TagLib::File> file;
};

template <typename File>
std::unique_ptr<TagLib::File> open_as(const std::string& path) {
    return std::make_unique<File>(path.c_str(), true, TagLib::AudioProperties::Accurate);
}

// Opens the file with its audio properties, also for writing tags: TagLib takes almost any
// bytes for MP3 or WAV, and only finding no audio in them tells that they are none.
opened_file open_audio_file(const std::string& path) {
    require_regular_file(path);
    const std::optional<audio_format> format = format_of(path);
    if (!format) fail_unreadable(path);
    opened_file out{*format, nullptr};
    switch (*format) {
    case audio_format::flac: out.file = open_as<TagLib::FLAC::File>(path); break;
    case audio_format::mp3: out.file = open_as<TagLib::MPEG::File>(path); break;
    case audio_format::ogg:
        out.file = open_as<TagLib::Ogg::Vorbis::File>(path);
        // ".ogg" is also used for Opus streams.
        if (!out.file->isValid()) {
            out.format = audio_format::opus;
            out.file = open_as<TagLib::Ogg::Opus::File>(path);
        }
        break;
    case audio_format::opus: out.file = open_as<TagLib::Ogg::Opus::File>(path); break;
    case audio_format::wav: out.file = open_as<TagLib::RIFF::WAV::File>(path); break;
    case audio_format::mp4: out.file = open_as<TagLib::MP4::File>(path); break;
    }
    const TagLib::AudioProperties* p = out.file->isValid() ? out.file->audioProperties() : nullptr;
    if (!p || p->sampleRate() <= 0 || p->channels() <= 0) fail_unreadable(path);
    return out;
}

double seconds_of(const opened_file& f) {
    const TagLib::AudioProperties& p = *f.file->audioProperties();
    // Where the file states its number of samples, the length is exact, not rounded to ms.
    if (f.format == audio_format::flac) {
        auto& flac = static_cast<const TagLib::FLAC::Properties&>(p);
        if (flac.sampleFrames() > 0 && flac.sampleRate() > 0)
            return static_cast<double>(flac.sampleFrames()) / flac.sampleRate();
    }
    if (f.format == audio_format::wav) {
        auto& wav = static_cast<const TagLib::RIFF::WAV::Properties&>(p);
        if (wav.sampleRate() > 0) return static_cast<double>(wav.sampleFrames()) / wav.sampleRate();
    }
    return p.lengthInMilliseconds() / 1000.0;
}

std::string codec_of(const opened_file& f) {
    switch (f.format) {
    case audio_format::flac: return "FLAC";
    case audio_format::mp3: return "MP3";
    case audio_format::ogg: return "Vorbis";
    case audio_format::opus: return "Opus";
    case audio_format::wav: {
        const int tag = static_cast<const TagLib::RIFF::WAV::Properties*>(f.file->audioProperties())->format();
        return tag == 1 || tag == 3 ? "PCM" : "WAV";
    }
    case audio_format::mp4:
        switch (static_cast<const TagLib::MP4::Properties*>(f.file->audioProperties())->codec()) {
        case TagLib::MP4::Properties::AAC: return "AAC";
        case TagLib::MP4::Properties::ALAC: return "ALAC";
        default: return "MP4";
        }
    }
    return {};
}

int bits_per_sample_of(const opened_file& f) {
    const TagLib::AudioProperties* p = f.file->audioProperties();
    switch (f.format) {
    case audio_format::flac: return static_cast<const TagLib::FLAC::Properties*>(p)->bitsPerSample();
    case audio_format::wav: return static_cast<const TagLib::RIFF::WAV::Properties*>(p)->bitsPerSample();
    case audio_format::mp4: return static_cast<const TagLib::MP4::Properties*>(p)->bitsPerSample();
    default: return 0;
    }
}

// The few fields every tag type has, for files whose only tag is an ID3v1 or RIFF INFO tag:
// read so that rewriting such a file (as ID3v2) keeps them.
tag_record read_basic_tag(const TagLib::Tag& tag) {
    tag_record tags;
    auto add = [&tags](const char* name, const TagLib::String& value) {
        if (!value.isEmpty()) tags.add_tag_value(name, value.to8Bit(true));
    };
    add("title", tag.title());
    add("artist", tag.artist());
    add("album", tag.album());
    add("genre", tag.genre());
    if (tag.year() > 0) tags.add_tag_value("date", std::to_string(tag.year()));
    if (tag.track() > 0) tags.add_tag_value("tracknumber", std::to_string(tag.track()));
    add("comment", tag.comment());
    return in_table_order(tags);
}

template <typename Tag>
bool has_content(const Tag* tag) { return tag && !tag->isEmpty(); }

tag_record tags_of(const opened_file& f) {
    switch (f.format) {
    case audio_format::flac: {
        auto& flac = static_cast<TagLib::FLAC::File&>(*f.file);
        if (has_content(flac.xiphComment())) return read_vorbis_comment(*flac.xiphComment());
        // Some writers put ID3 tags on FLAC files; read them rather than lose them.
        if (has_content(flac.ID3v2Tag())) return read_id3v2(*flac.ID3v2Tag());
        if (has_content(flac.ID3v1Tag())) return read_basic_tag(*flac.ID3v1Tag());
        return {};
    }
    case audio_format::mp3: {
        auto& mp3 = static_cast<TagLib::MPEG::File&>(*f.file);
        if (has_content(mp3.ID3v2Tag())) return read_id3v2(*mp3.ID3v2Tag());
        if (has_content(mp3.ID3v1Tag())) return read_basic_tag(*mp3.ID3v1Tag());
        return {};
    }
    case audio_format::ogg:
    case audio_format::opus: return read_vorbis_comment(*static_cast<TagLib::Ogg::XiphComment*>(f.file->tag()));
    case audio_format::wav: {
        auto& wav = static_cast<TagLib::RIFF::WAV::File&>(*f.file);
        if (wav.hasID3v2Tag()) return read_id3v2(*wav.ID3v2Tag());
        if (wav.hasInfoTag()) return read_basic_tag(*wav.InfoTag());
        return {};
    }
    case audio_format::mp4: return read_mp4(*static_cast<TagLib::MP4::File&>(*f.file).tag());
    }
    return {};
}

// A file the user has marked read-only stays unchanged, even for a user (root) whom the system
// would let write it.
bool is_marked_read_only(const std::string& path) {
    using std::filesystem::perms;
    std::error_code ec;
    const perms p = std::filesystem::status(hostkit::utf8_path(path), ec).permissions();
    return !ec && (p & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none;
}

bool save_tags(opened_file& f, const tag_record& tags) {
    switch (f.format) {
    case audio_format::flac: {
        auto& flac = static_cast<TagLib::FLAC::File&>(*f.file);
        write_vorbis_comment(*flac.xiphComment(true), tags);
        // ID3 tags on a FLAC file would go on showing the old values to some readers.
        flac.strip(TagLib::FLAC::File::ID3v1 | TagLib::FLAC::File::ID3v2);
        return flac.save();
    }
    case audio_format::mp3: {
        auto& mp3 = static_cast<TagLib::MPEG::File&>(*f.file);
        write_id3v2(*mp3.ID3v2Tag(true), tags);
        // The ID3v1 and APE copies of the old values go: they cannot hold what was written.
        return mp3.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripOthers, TagLib::ID3v2::v4,
                        TagLib::File::DoNotDuplicate);
    }
    case audio_format::ogg:
    case audio_format::opus:
        write_vorbis_comment(*static_cast<TagLib::Ogg::XiphComment*>(f.file->tag()), tags);
        return f.file->save();
    case audio_format::wav: {
        auto& wav = static_cast<TagLib::RIFF::WAV::File&>(*f.file);
        write_id3v2(*wav.ID3v2Tag(), tags);
        return wav.save(TagLib::RIFF::WAV::File::ID3v2, TagLib::File::StripOthers, TagLib::ID3v2::v4);
    }
    case audio_format::mp4:
        write_mp4(*static_cast<TagLib::MP4::File&>(*f.file).tag(), tags);
        return f.file->save();
    }
    return false;
}

} // namespace

bool is_audio_file_name(const std::string& path) { return format_of(path).has_value(); }

track_info read_audio_file(const std::string& path) {
    const opened_file f = open_audio_file(path);
    const TagLib::AudioProperties& p = *f.file->audioProperties();
    track_info info;
    info.length = seconds_of(f);
    info.info_set("codec", codec_of(f));
    auto set_number = [&info](const char* name, int value) {
        if (value > 0) info.info_set(name, std::to_string(value));
    };
    set_number("samplerate", p.sampleRate());
    set_number("channels", p.channels());
    set_number("bitrate", p.bitrate());
    set_number("bitspersample", bits_per_sample_of(f));
    info.tags = tags_of(f);
    return info;
}

namespace {
void save_or_raise(opened_file& f, const std::string& path, const tag_record& tags) {
    if (f.file->readOnly() || is_marked_read_only(path)) throw tunehall_io::exception_io_denied("Access denied: " + path);
    if (!save_tags(f, tags)) throw tunehall_io::exception_io("Cannot write tags: " + path);
}
} // namespace

void write_tags(const std::string& path, const tag_record& tags) {
    opened_file f = open_audio_file(path);
    save_or_raise(f, path, tags);
}

void update_tags(const std::string& path, const std::function<std::optional<tag_record>(const tag_record&)>& change) {
    opened_file f = open_audio_file(path);
    if (std::optional<tag_record> changed = change(tags_of(f))) save_or_raise(f, path, *changed);
}
