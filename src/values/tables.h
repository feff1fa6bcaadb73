#pragma once

#include <QString>

#include <array>

// Tables behind the physical values shown beside the fields. Index 0 is code 0.

// Channels A to C.
extern const std::array<double, 128> lpfBandwidth;   // LPF cut-off, MHz
extern const std::array<double, 64> qfShiftDegrees;  // IQ phase, degrees
extern const std::array<double, 1024> ifaGainDb;     // IF gain, dB
extern const std::array<double, 1024> ifaGainPercent; // IF gain in ADC mode, %
extern const std::array<QString, 4> lnaStateWords;   // which LNA is active

// Amplitude words of the output clock, by output type and rate.
extern const std::array<QString, 4> lvdsWords;
extern const std::array<QString, 4> lowRateWords;
extern const std::array<QString, 4> highRateWords;
extern const std::array<QString, 4> externalWords;

// Channel D.
extern const std::array<int, 256> agcThresholdMv;    // IF AGC thresholds, mV; -1: no meaning
extern const std::array<double, 512> chdIfaGainDb;   // IF gain, dB
extern const std::array<double, 256> chdLpfCutoff;   // LPF cut-off, MHz
extern const std::array<double, 56> chdLnaAgcMv;     // LNA AGC bounds, mV
extern const std::array<double, 56> chdMixAgcMv;     // mixer AGC bounds, mV
extern const std::array<std::array<double, 16>, 5> chdRfGainDb; // by band 1..5, then code
extern const std::array<double, 64> chdQfShiftFm;
extern const std::array<double, 64> chdQfShiftVhf;
extern const std::array<double, 64> chdQfShiftUhf;
extern const std::array<float, 4> chdQfScaleHigh;    // LS phase scale above 1820000 kHz
extern const std::array<float, 4> chdQfScaleLow;
extern const std::array<QString, 16> trfBandFm;      // tuned band "low high", MHz
extern const std::array<QString, 16> trfBandVhf;
extern const std::array<QString, 16> trfBandUhf;

// The band of channel D's oscillator frequency in kHz, 1 (FM) to 5; each
// limit belongs to the band below it.
int chdBand(quint32 flo);
