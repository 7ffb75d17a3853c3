// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A test peer: GigE Vision cameras simulated by Aravis's fake camera, one per argument, until
// standard input closes. Each argument is ADDRESS,SERIAL[,MAC[,MODEL[,USERNAME]]]; the address
// must be one of an adapter that is up. --heartbeat MS sets the cameras' heartbeat timeout.
// Prints "ready" once every camera listens.
//
// Run it only inside a network namespace of the test's own: the cameras answer broadcasts.

#include <arv.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr guint32 MacHigh = 0x0008;
constexpr guint32 MacLow = 0x000C;
constexpr guint32 ModelName = 0x0068;
constexpr guint32 UserName = 0x00E8;
constexpr guint32 HeartbeatTimeout = 0x0938;

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> parts;
    std::string::size_type start = 0;
    for (;;) {
        const std::string::size_type comma = text.find(',', start);
        parts.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos)
            return parts;
        start = comma + 1;
    }
}

void writeText(ArvFakeCamera* camera, guint32 address, const std::string& text, guint32 size)
{
    std::vector<char> field(size, '\0');
    std::memcpy(field.data(), text.data(), std::min<std::size_t>(text.size(), size - 1));
    arv_fake_camera_write_memory(camera, address, size, field.data());
}

} // namespace

int main(int argc, char** argv)
{
    long heartbeat = 0;
    std::vector<const char*> cameraArguments;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--heartbeat") == 0 && i + 1 < argc)
            heartbeat = std::strtol(argv[++i], nullptr, 10);
        else
            cameraArguments.push_back(argv[i]);
    }
    std::vector<ArvGvFakeCamera*> cameras;
    for (const char* argument : cameraArguments) {
        const std::vector<std::string> fields = split(argument);
        ArvGvFakeCamera* camera = arv_gv_fake_camera_new(
            fields[0].c_str(), fields.size() > 1 ? fields[1].c_str() : nullptr);
        if (!arv_gv_fake_camera_is_running(camera)) {
            std::fprintf(stderr, "fake-gige-camera: cannot listen on %s\n", fields[0].c_str());
            return 1;
        }
        ArvFakeCamera* fake = arv_gv_fake_camera_get_fake_camera(camera);
        if (fields.size() > 2) {
            const unsigned long long mac = std::strtoull(fields[2].c_str(), nullptr, 16);
            arv_fake_camera_write_register(fake, MacHigh, static_cast<guint32>(mac >> 32));
            arv_fake_camera_write_register(fake, MacLow, static_cast<guint32>(mac));
        }
        if (fields.size() > 3)
            writeText(fake, ModelName, fields[3], 32);
        if (fields.size() > 4)
            writeText(fake, UserName, fields[4], 16);
        if (heartbeat > 0)
            arv_fake_camera_write_register(fake, HeartbeatTimeout, static_cast<guint32>(heartbeat));
        cameras.push_back(camera);
    }
    std::printf("ready\n");
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    for (ArvGvFakeCamera* camera : cameras)
        g_object_unref(camera);
    return 0;
}
