#include "tagger/tag_sets.h"

#include <stdexcept>
#include <string>

#include "tagger/editing_model.h"

std::vector<tag_record> build_track_tag_sets(const disc_record& record, std::size_t track_count) {
    if (track_count > record.get_track_count())
        throw std::invalid_argument("build_track_tag_sets: more tracks asked for than the match has");
    std::string disc_artist, disc_album;
    disc_title_parts(record, disc_artist, disc_album);
    const std::string year = record.get_field(disc_record::dyear);
    const std::string genre = record.get_field(disc_record::dgenre);
    const std::string disc_comment = record.get_field(disc_record::extd);
    const std::string total = std::to_string(track_count);

    std::vector<tag_record> sets(track_count);
    for (std::size_t i = 0; i < track_count; ++i) {
        tag_record& tags = sets[i];
        tags.add_tag_value("album", disc_album);
        if (!year.empty()) tags.add_tag_value("date", year);
        if (!genre.empty()) tags.add_tag_value("genre", genre);
        std::string artist = disc_artist, title = record.get_track_field(i, disc_record::ttitle);
        if (record.get_various_artists()) {
            tags.add_tag_value("album artist", disc_artist);
            // A title without its own artist keeps the disc artist.
            std::string own_artist, own_title;
            if (split_artist_title(title, own_artist, own_title)) {
                artist = std::move(own_artist);
                title = std::move(own_title);
            }
        }
        tags.add_tag_value("artist", artist);
        tags.add_tag_value("title", title);
        tags.add_tag_value("tracknumber", std::to_string(i + 1));
        tags.add_tag_value("totaltracks", total);
        if (!disc_comment.empty()) tags.add_tag_value("comment", disc_comment);
        if (const char* track_comment = record.get_track_field(i, disc_record::extt); *track_comment)
            tags.add_tag_value("comment", track_comment);
    }
    return sets;
}
