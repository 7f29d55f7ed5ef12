#ifndef TOOLS_VRTOOL_TRANSFERSTATISTICS_H
#define TOOLS_VRTOOL_TRANSFERSTATISTICS_H

// The library's own statistics that a transfer counts in.
inline constexpr int bytesReadStat = 0x10000;
inline constexpr int bytesWrittenStat = 0x10001;
inline constexpr int framesTransferredStat = 0x10002;
// What became of the whole: 0 if all is there, else 1.
inline constexpr int transferStatusStat = 0x10004;

// The statistics of the outcomes are numbered behind the library's own.
inline constexpr int firstOutcomeStat = 0x20000;

#endif
