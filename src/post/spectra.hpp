// Responses in irregular seas, by the spectra of a case file.
#pragma once

#include "post/motions.hpp"

#include <functional>

// A wave spectrum [m^2 s] ready for use: of a JONSWAP (K. Hasselmann et al. 1973) or Pierson-Moskowitz (1964)
// spectrum so normalised that the variance is height^2/16; a table is linear between its values and 0
// outside.
class WaveSpectrum {
  public:
    explicit WaveSpectrum(const CaseSpectrum &from);
    double density(double omega) const;
    double variance() const { return variance_; }

  private:
    double shape(double omega) const;
    const CaseSpectrum from_;
    double factor_ = 1, variance_ = 0;
};

// Shares of the energy that go to each heading of the run: the spreading cos^2s of half the angle from the
// mean direction (M. S. Longuet-Higgins, D. E. Cartwright, N. D. Smith 1963), with responses linear between
// headings up to 45 degrees apart. What falls elsewhere is lost, so that the shares add up to less than 1.
std::vector<double> heading_shares(const P2fFile &p2f, const CaseSpectrum &spectrum);

// Moments 0, 2, 4, 6 of a response, each the integral of omega^k |H|^2 S, with the squares of the response
// linear between the frequencies of the run; none of it outside them. `square` is |H|^2 of a heading and a
// period.
std::array<double, 4> response_moments(const P2fFile &p2f, const WaveSpectrum &spectrum,
                                       const std::vector<double> &shares,
                                       const std::function<double(int heading, int period)> &square);

// What follows from the moments m0 of a response and m2 of its rate: significant single amplitude 2 sqrt(m0),
// mean zero-crossing period, most probable largest amplitude sqrt(2 m0 ln N) of the N crossings in that many
// hours.
struct SeaStatistics {
    double significant = 0, zero_crossing = 0, largest = 0;
};
SeaStatistics sea_statistics(double m0, double m2, double hours);

// Share of the energy of the spectrum that is within the frequencies of the run.
double frequencies_covered(const P2fFile &p2f, const WaveSpectrum &spectrum);
