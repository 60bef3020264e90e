// vela curves: the transfer curves of vela tonemap as data.
#include "commands.hpp"
#include "hdr_curves.hpp"
#include "options.hpp"
#include "slots.hpp"

#include <cmath>
#include <iostream>
#include <memory>

namespace host {
namespace {

constexpr int stepsOfLight = 4096; // in a unit of the encoding tables
constexpr double largestLight = 64;

// Looks single values up in the tables of slot 400, through slot 401.
class CurveReader {
public:
    explicit CurveReader(const Library &library) : procs(LIBRARY_EXPORT(library, VCB_RegColorSpace))
    {
        for (const int slot : {VcbColorSpaceProcs_CscSetupHdrConversion, VcbColorSpaceProcs_CscConvertHdrPixels})
            requireSlot("colorspace", procs.colorSpace, slot, library.processorLevel());
    }

    // Light by code value, 0..1. Slot 401 returns 0..1 in steps of 1/4096 where, as in a process that has set up no
    // target, encoding is the identity; so light is first brought as far up into that range as powers of two can.
    std::vector<double> decoded(const Curve &curve, const std::vector<double> &codeValues) const
    {
        setUp(curve.code, VcbHdrCurve{});
        std::vector<double> light;
        for (const double code : codeValues) {
            const double positive = magnitude(code, 1);
            light.push_back(positive > 0 ? positive : 0 - magnitude(code, -1));
        }
        return light;
    }

    // Code values by light.
    std::vector<double> encoded(const Curve &curve, const std::vector<double> &light) const
    {
        setUp(VCB_HDR_POWER_2_2, curve.code); // decodes 1 as 1; the matrix makes light of it
        std::vector<double> codeValues(light.size());
        std::ranges::transform(light, codeValues.begin(), [&](double x) { return converted(1, x); });
        return codeValues;
    }

private:
    void setUp(VcbHdrCurve from, VcbHdrCurve to) const
    {
        const HdrConversionParams params = VELA_HDR_CONVERSION_DEFAULTS;
        procs.colorSpace.CscSetupHdrConversion(from, to, &params);
    }

    double converted(double code, double gain) const
    {
        const auto grey = static_cast<float>(code);
        const float pixel[4] = {grey, grey, grey, 1};
        const Matrix3 unity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
        float result[4];
        procs.colorSpace.CscConvertHdrPixels(pixel, result, hdrMatrix(unity, gain).data(), 1);
        return static_cast<double>(result[0]);
    }

    double magnitude(double code, double sign) const
    {
        double gain = 4096;
        double result = converted(code, sign * gain);
        for (; result == 1; result = converted(code, sign * gain))
            gain /= 2;
        return result / gain;
    }

    const vela::ColorSpaceProcs procs;
};

// From the first step of light to the largest, each so many times the one before; steps that the tables have.
std::vector<double> lightsToEncode(int rows)
{
    std::vector<double> lights;
    for (int i = 0; i < rows; ++i) {
        const double octaves = std::log2(largestLight * stepsOfLight) * i / (rows - 1);
        const double light = std::round(std::exp2(octaves)) / stepsOfLight;
        if (lights.empty() || light > lights.back())
            lights.push_back(light);
    }
    return lights;
}

std::vector<double> codesToDecode(int rows)
{
    std::vector<double> codes(static_cast<std::size_t>(rows));
    for (std::size_t i = 0; i < codes.size(); ++i)
        codes[i] = static_cast<double>(i) / (rows - 1);
    return codes;
}

void runCurves(bool encode, int rows, Session &session)
{
    const CurveReader reader(session.library());
    const std::vector<double> arguments = encode ? lightsToEncode(rows) : codesToDecode(rows);
    std::vector<std::vector<double>> columns;
    std::cout << (encode ? "light" : "code");
    for (const Curve &curve : curves) {
        std::cout << ',' << curve.name;
        columns.push_back(encode ? reader.encoded(curve, arguments) : reader.decoded(curve, arguments));
    }
    std::cout << '\n';
    for (std::size_t row = 0; row < arguments.size(); ++row) {
        std::cout << formatted("%.7g", arguments[row]);
        for (const std::vector<double> &column : columns)
            std::cout << formatted(",%.7g", column[row]);
        std::cout << '\n';
    }
}

constexpr const char *curvesFooter =
    R"(Prints CSV: a column for every curve of 'vela tonemap', as the library's own tables have it. Decoded: light by code
value, 0 to 1; light is as exact as its first eleven bits. Encoded: code values by light, 1/4096 to 64.)";

} // namespace

void addCurvesCommand(CLI::App &app, Session &session)
{
    struct CurvesOptions {
        bool encode = false;
        int rows = 257;
    };
    const auto options = std::make_shared<CurvesOptions>();
    CLI::App &command = *app.add_subcommand("curves", "Print the transfer curves of 'vela tonemap' as CSV");
    command.add_flag("--encode", options->encode, "Code values by light, rather than light by code value");
    addNumber(command, "--rows", options->rows, 2, 4096, "Rows, 2 to 4096; equal ones are printed once");
    command.footer(curvesFooter);
    command.callback([options, &session] { runCurves(options->encode, options->rows, session); });
}

} // namespace host
