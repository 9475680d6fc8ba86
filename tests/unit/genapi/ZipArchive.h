#pragma once

// Archives as devices hold them.

#include <zip.h>

#include <string>
#include <vector>

struct Member {
    std::string name;
    std::string content;
};

inline std::string Zip(const std::vector<Member>& members, zip_int32_t method = ZIP_CM_DEFAULT) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const memory = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(memory);
    zip_t* const archive = zip_open_from_source(memory, ZIP_TRUNCATE, &error);
    for (const Member& member : members) {
        const zip_int64_t index = zip_file_add(
            archive, member.name.c_str(),
            zip_source_buffer(archive, member.content.data(), member.content.size(), 0), ZIP_FL_OVERWRITE);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), method, 0);
    }
    zip_close(archive);
    zip_source_open(memory);
    zip_source_seek(memory, 0, SEEK_END);
    std::string bytes(static_cast<size_t>(zip_source_tell(memory)), '\0');
    zip_source_seek(memory, 0, SEEK_SET);
    zip_source_read(memory, &bytes[0], bytes.size());
    zip_source_close(memory);
    zip_source_free(memory);
    zip_error_fini(&error);
    return bytes;
}

/// The first member of an archive; "" when it can't be read.
inline std::string FirstMember(const std::string& path) {
    zip_t* const archive = zip_open(path.c_str(), ZIP_RDONLY, nullptr);
    if (!archive)
        return {};
    zip_stat_t member;
    zip_file_t* const file = zip_fopen_index(archive, 0, 0);
    std::string content;
    if (file && zip_stat_index(archive, 0, 0, &member) == 0) {
        content.resize(member.size);
        zip_fread(file, &content[0], member.size);
    }
    if (file)
        zip_fclose(file);
    zip_discard(archive);
    return content;
}
