#include "audio_file.h"

#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>

#include <sys/stat.h>

#include <taglib/flacfile.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/infotag.h>
#include <taglib/mp4file.h>
#include <taglib/mp4tag.h>
#include <taglib/mpegfile.h>
#include <taglib/oggpageheader.h>
#include <taglib/opusfile.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>

#include <tunehall/exceptions.h>
#include <tunehall/text.h>

#include "cached_file_stream.h"
#include "staged_file_stream.h"
#include "field_table.h"
#include "gapless_length.h"
#include "header_bytes.h"
#include "id3v2_tags.h"
#include "mp4_tags.h"
#include "taglib_text.h"
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

// The extension of the path's last component as std::filesystem::path::extension() finds it
// ("" for ".flac" or ".."), without building the paths that it takes.
std::string_view extension_of(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name == "..") return {};
    return name.substr(dot);
}

std::optional<audio_format> format_of(const std::string& path) {
    const std::string_view extension = extension_of(path);
    for (const typed_extension& t : typed_extensions)
        if (tunehall::ascii_iequals(t.extension, extension)) return t.format;
    return std::nullopt;
}

[[noreturn]] void fail_unreadable(const std::string& path) {
    throw tunehall_io::exception_io_data("Unsupported format or corrupted file: " + path);
}

// The mode of the file at `path`, which must be a regular file: one stat serves this check and
// the read-only test before saving.
mode_t regular_file_mode(const std::string& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) throw tunehall_io::exception_io_not_found("File not found: " + path);
    if (!S_ISREG(st.st_mode)) fail_unreadable(path);
    return st.st_mode;
}

// A file the user has marked read-only stays unchanged, even for a user (root) whom the system
// would let write it.
bool is_marked_read_only(mode_t mode) { return (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0; }

} // namespace

// An opened file of a known format; the format decides which TagLib class it is. The file reads
// through `stream`, declared first so that it outlives the file; a file opened for writing saves
// into `staged` (the same stream), which puts the edits into the file only when committed.
struct opened_file {
    audio_format format;
    bool marked_read_only;  // by its permissions when it was opened
    std::unique_ptr<TagLib::IOStream> stream;
    staged_file_stream* staged = nullptr;
    std::unique_ptr<TagLib::File> file;
};

namespace {

template <typename File>
void open_as(opened_file& f, const std::string& path, bool for_writing) {
    f.file.reset();
    if (for_writing) {
        auto staged = std::make_unique<staged_file_stream>(path);
        f.staged = staged.get();
        f.stream = std::move(staged);
    } else {
        f.stream = std::make_unique<cached_file_stream>(path);
    }
    constexpr auto style = TagLib::AudioProperties::Accurate;
    // The formats that may carry ID3v2 tags take the frame factory their path constructors use.
    if constexpr (std::is_constructible_v<File, TagLib::IOStream*, TagLib::ID3v2::FrameFactory*, bool,
                                          TagLib::AudioProperties::ReadStyle>)
        f.file = std::make_unique<File>(f.stream.get(), TagLib::ID3v2::FrameFactory::instance(), true, style);
    else
        f.file = std::make_unique<File>(f.stream.get(), true, style);
}

// Opens the file with its audio properties, also for writing tags: TagLib takes almost any
// bytes for MP3 or WAV, and only finding no audio in them tells that they are none.
opened_file open_audio_file(const std::string& path, bool for_writing = false) {
    const mode_t mode = regular_file_mode(path);
    const std::optional<audio_format> format = format_of(path);
    if (!format) fail_unreadable(path);
    opened_file out{*format, is_marked_read_only(mode), nullptr, nullptr, nullptr};
    switch (*format) {
    case audio_format::flac: open_as<TagLib::FLAC::File>(out, path, for_writing); break;
    case audio_format::mp3: open_as<TagLib::MPEG::File>(out, path, for_writing); break;
    case audio_format::ogg:
        open_as<TagLib::Ogg::Vorbis::File>(out, path, for_writing);
        // ".ogg" is also used for Opus streams.
        if (!out.file->isValid()) {
            out.format = audio_format::opus;
            open_as<TagLib::Ogg::Opus::File>(out, path, for_writing);
        }
        break;
    case audio_format::opus: open_as<TagLib::Ogg::Opus::File>(out, path, for_writing); break;
    case audio_format::wav: open_as<TagLib::RIFF::WAV::File>(out, path, for_writing); break;
    case audio_format::mp4: open_as<TagLib::MP4::File>(out, path, for_writing); break;
    }
    const TagLib::AudioProperties* p = out.file->isValid() ? out.file->audioProperties() : nullptr;
    if (!p || p->sampleRate() <= 0 || p->channels() <= 0) fail_unreadable(path);
    return out;
}

// The file's length, and whether it is the number of samples that a gapless decoder outputs.
struct measured_length {
    double seconds = 0.0;
    bool exact = false;
};

// An MP3's LAME tag sits in its first frame; only those bytes are read.
std::optional<exact_length> mp3_length(const opened_file& f) {
    const long first_frame = static_cast<TagLib::MPEG::File&>(*f.file).firstFrameOffset();
    if (first_frame < 0) return std::nullopt;
    f.stream->seek(first_frame);
    const TagLib::ByteVector bytes = f.stream->readBlock(192);
    return mp3_gapless_length({bytes.data(), bytes.size()});
}

// The body of the moov box, found by walking the top-level boxes' headers.
std::optional<std::string> mp4_moov(TagLib::IOStream& stream) {
    // Far above any real moov (an hour of AAC needs about 200 KB), low enough to read whole.
    constexpr std::uint64_t largest_moov = 16 << 20;
    const auto end = static_cast<std::uint64_t>(stream.length());
    for (std::uint64_t at = 0; at + 8 <= end;) {
        stream.seek(static_cast<long>(at));
        const TagLib::ByteVector h = stream.readBlock(16);
        if (h.size() < 8) return std::nullopt;
        const std::string_view head(h.data(), h.size());
        std::uint64_t size = big_endian(head, 0, 4), header = 8;
        if (size == 1 && head.size() == 16) {
            size = big_endian(head, 8, 8);
            header = 16;
        }
        if (size == 0) size = end - at;
        if (size < header || size > end - at) return std::nullopt;
        if (head.substr(4, 4) == "moov") {
            if (size - header > largest_moov) return std::nullopt;
            stream.seek(static_cast<long>(at + header));
            const TagLib::ByteVector body = stream.readBlock(static_cast<unsigned long>(size - header));
            return std::string(body.data(), body.size());
        }
        at += size;
    }
    return std::nullopt;
}

std::optional<exact_length> mp4_length(const opened_file& f) {
    auto& mp4 = static_cast<TagLib::MP4::File&>(*f.file);
    const TagLib::String smpb_key = "----:com.apple.iTunes:iTunSMPB";
    if (mp4.tag()->contains(smpb_key)) {
        const TagLib::StringList texts = mp4.tag()->item(smpb_key).toStringList();
        const auto rate = static_cast<std::uint32_t>(mp4.audioProperties()->sampleRate());
        if (!texts.isEmpty())
            if (auto length = itunsmpb_length(texts.front().to8Bit(), rate)) return length;
    }
    const std::optional<std::string> moov = mp4_moov(*f.stream);
    return moov ? mp4_edit_length(*moov) : std::nullopt;
}

// An Ogg stream's last granule position counts the samples decoded up to its end, Opus's in
// 48 kHz samples with the pre-skip included.
std::optional<exact_length> ogg_length(const opened_file& f) {
    auto& ogg = static_cast<TagLib::Ogg::File&>(*f.file);
    const TagLib::Ogg::PageHeader* first = ogg.firstPageHeader();
    const TagLib::Ogg::PageHeader* last = ogg.lastPageHeader();
    if (!first || !last || first->absoluteGranularPosition() < 0) return std::nullopt;
    const long long samples = last->absoluteGranularPosition() - first->absoluteGranularPosition();
    if (f.format == audio_format::ogg) {
        const int rate = ogg.audioProperties()->sampleRate();
        if (samples <= 0 || rate <= 0) return std::nullopt;
        return exact_length{static_cast<std::uint64_t>(samples), static_cast<std::uint32_t>(rate)};
    }
    const TagLib::ByteVector head = ogg.packet(0);
    const std::optional<std::uint16_t> pre_skip = opus_pre_skip({head.data(), head.size()});
    if (!pre_skip || samples <= *pre_skip) return std::nullopt;
    return exact_length{static_cast<std::uint64_t>(samples - *pre_skip), 48000};
}

measured_length length_of(const opened_file& f) {
    const TagLib::AudioProperties& p = *f.file->audioProperties();
    std::optional<exact_length> exact;
    switch (f.format) {
    case audio_format::flac: {
        auto& flac = static_cast<const TagLib::FLAC::Properties&>(p);
        if (flac.sampleFrames() > 0)
            exact = exact_length{flac.sampleFrames(), static_cast<std::uint32_t>(flac.sampleRate())};
        break;
    }
    case audio_format::wav: {
        auto& wav = static_cast<const TagLib::RIFF::WAV::Properties&>(p);
        exact = exact_length{wav.sampleFrames(), static_cast<std::uint32_t>(wav.sampleRate())};
        break;
    }
    case audio_format::mp3: exact = mp3_length(f); break;
    case audio_format::mp4: exact = mp4_length(f); break;
    case audio_format::ogg:
    case audio_format::opus: exact = ogg_length(f); break;
    }
    // Without a stated sample count, TagLib's length to the millisecond (an MP3 without a LAME
    // tag: with the encoder's delay and padding).
    if (!exact) return {p.lengthInMilliseconds() / 1000.0, false};
    return {exact->seconds(), true};
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
        if (!value.isEmpty()) tags.add_tag_value(name, utf8_of(value));
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

bool save_tags(opened_file& f, const tag_record& tags, const tag_write_options& options) {
    const auto id3v2_version = options.id3v2_version == 3 ? TagLib::ID3v2::v3 : TagLib::ID3v2::v4;
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
        // The ID3v1 and APE copies of the old values go: they cannot hold what was written. In
        // v2.3 TagLib writes the date as TYER and TDAT.
        return mp3.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripOthers, id3v2_version,
                        TagLib::File::DoNotDuplicate);
    }
    case audio_format::ogg:
    case audio_format::opus:
        write_vorbis_comment(*static_cast<TagLib::Ogg::XiphComment*>(f.file->tag()), tags);
        return f.file->save();
    case audio_format::wav: {
        auto& wav = static_cast<TagLib::RIFF::WAV::File&>(*f.file);
        write_id3v2(*wav.ID3v2Tag(), tags);
        return wav.save(TagLib::RIFF::WAV::File::ID3v2, TagLib::File::StripOthers, id3v2_version);
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
    const measured_length length = length_of(f);
    info.length = length.seconds;
    info.info_set(length_kind_field, length.exact ? "exact" : "estimated");
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
void stage_or_raise(opened_file& f, const std::string& path, const tag_record& tags, const tag_write_options& options) {
    if (f.file->readOnly() || f.marked_read_only) throw tunehall_io::exception_io_denied("Access denied: " + path);
    if (!save_tags(f, tags, options)) throw tunehall_io::exception_io("Cannot write tags: " + path);
}
} // namespace

prepared_tag_write::prepared_tag_write(std::string path, std::unique_ptr<opened_file> file)
    : path_(std::move(path)), file_(std::move(file)) {}
prepared_tag_write::prepared_tag_write(prepared_tag_write&&) noexcept = default;
prepared_tag_write::~prepared_tag_write() = default;

bool prepared_tag_write::changes_file() { return !file_->staged->unchanged(); }
std::int64_t prepared_tag_write::new_size() { return file_->staged->length(); }
content_layout prepared_tag_write::undo_layout() { return file_->staged->undo_layout(); }
void prepared_tag_write::commit() { file_->staged->commit(); }

prepared_tag_write prepare_tag_write(const std::string& path, const tag_record& tags, const tag_write_options& options) {
    auto f = std::make_unique<opened_file>(open_audio_file(path, /*for_writing=*/true));
    stage_or_raise(*f, path, tags, options);
    return prepared_tag_write(path, std::move(f));
}

void restore_content(const std::string& path, const content_layout& layout) {
    staged_file_stream stream(path);
    if (!stream.isOpen()) throw tunehall_io::exception_io_not_found("File not found: " + path);
    stream.set_layout(layout);
    stream.commit();
}

void write_tags(const std::string& path, const tag_record& tags, const tag_write_options& options) {
    prepare_tag_write(path, tags, options).commit();
}
