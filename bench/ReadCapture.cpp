// Reads a savefile with libpcap and does nothing with its frames: the measure of the machine beside the program's own
// figures. Prints the frames and the seconds that the reading took.
//
//     read_capture FILE
#include <pcap/pcap.h>

#include <chrono>
#include <cstdio>

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr, "usage: read_capture FILE\n");
        return 2;
    }
    char error[PCAP_ERRBUF_SIZE] = "";
    const auto begin = std::chrono::steady_clock::now();
    pcap_t* file = pcap_open_offline(words[1], error);
    if (!file) {
        std::fprintf(stderr, "%s\n", error);
        return 1;
    }
    long frames = 0;
    unsigned touched = 0;
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    while (pcap_next_ex(file, &header, &data) == 1) {
        ++frames;
        if (header->caplen) touched += data[0];
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    pcap_close(file);
    std::printf("%ld %.6f %u\n", frames, seconds.count(), touched);
    return 0;
}
