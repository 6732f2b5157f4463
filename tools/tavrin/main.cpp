// tavrin: the command-line ProcessingHost of the Tavrin Processing library.
#include "commands.h"
#include "session.h"

#include <cstdio>
#include <cstring>
#include <map>

namespace {

struct Command {
    int (*run)(const Args&);
};

const std::map<std::string, Command>& CommandTable()
{
    static const std::map<std::string, Command> table = {
        {"info", {CommandInfo}},
        {"pixels", {CommandPixels}},
        {"convert", {CommandConvert}},
        {"render", {CommandRender}},
        {"run", {CommandRun}},
        {"demo", {CommandDemo}},
        {"geom", {CommandGeom}},
        {"filter", {CommandFilter}},
        {"level", {CommandLevel}},
        {"plot", {CommandPlot}},
        {"spec", {CommandSpec}},
        {"specfit", {CommandSpecFit}},
        {"specfft", {CommandSpecFFT}},
        {"multispec", {CommandMultiSpec}},
        {"attached", {CommandAttached}},
        {"lut", {CommandLut}},
        {"histogram", {CommandHistogram}},
        {"math", {CommandMath}},
        {"math2", {CommandMath2}},
        {"normalise", {CommandNormalise}},
        {"fft", {CommandFft}},
        {"particles", {CommandParticles}},
        {"map", {CommandMap}},
        {"measure", {CommandMeasure}},
        {"region", {CommandRegion}},
        {"replace", {CommandReplace}},
        {"lattice", {CommandLattice}},
    };
    return table;
}

int PrintVersion()
{
    wint_StartUpStringType s;
    dl_GetStartUpStrings(&s);
    std::printf("%s\n%s\n%s", s.Text1, s.Text2, s.Text3);
    return 0;
}

} // namespace

void PrintUsage(FILE* out)
{
    std::fputs(
        "usage: tavrin [options] COMMAND [arguments]\n"
        "\n"
        "Commands:\n"
        "  info FILE [--json]      open a file and describe its item (--json: every field of\n"
        "                          the record as one JSON object)\n"
        "  pixels FILE -o OUT      write the item's data block: an image's codes (u16, row 0\n"
        "                          first), a spectrum's f32 Y values then X values\n"
        "  convert IN OUT [--8bit] open IN and save its item as the type of OUT's extension\n"
        "                          (.tif .bin .bft .asc .aft .spc .dat .hdr)\n"
        "  render IN -o OUT.png [--mode 0-4] [--size N] [--table 0-7] [--full]\n"
        "                          show the image in a frame store and write what the window\n"
        "                          shows (modes: 0 plain, 1 shaded, 2 contour, 3 and 4 image\n"
        "                          with contours; --full: colour bar, ruler, text, histogram)\n"
        "  run SCRIPT              run a script (- for standard input): one command a line,\n"
        "                          an entry point's name without dl_ and its arguments, or\n"
        "                          answer yes|no|cancel|ok|NUMBER|\"TEXT\", render OUT.png, info,\n"
        "                          pick X,Y ... (points for a selection, in image pixels),\n"
        "                          pick X Y [move|left|middle|right|shift] (one event at a\n"
        "                          frame position), slider ID STATE V1 [V2 [V3]], text (the\n"
        "                          parameter text panel)\n"
        "  demo [--out DIR]        make the built-in sample data, save, reload and render it\n"
        "  geom IN OUT --op NAME   one geometry command on the image, the result saved as OUT\n"
        "                          (.tif, or .png for its picture); NAME: mirror-x mirror-y\n"
        "                          transpose rot90 rot180 rot270 pad256 pad512 interp128\n"
        "                          interp256 interp512\n"
        "  geom IN OUT --rotate X0,Y0,X1,Y1,X2,Y2\n"
        "                          turn about (X0,Y0) by the angle between the directions to\n"
        "                          the two other points (image pixels)\n"
        "  geom IN OUT --translate X0,Y0,X1,Y1\n"
        "                          shift by the vector from the first point to the second\n"
        "  region IN OUT --magnify X1,Y1,X2,Y2 | --drift P0 P1 P2 | --trim P0 P1 P2\n"
        "        | --extract X1,Y1,X2,Y2\n"
        "                          a region of the image through the mesh tool, the result\n"
        "                          saved as OUT (.tif, or .png for its picture): the rectangle\n"
        "                          magnified, the parallelogram of corner P0 and neighbours P1,\n"
        "                          P2 (X,Y each) straightened or trimmed, or a rectangle\n"
        "                          extracted\n"
        "  replace EXTRACT TARGET OUT\n"
        "                          the rectangle of an extract put back into TARGET\n"
        "  lattice IN OUT --origin X,Y --a X,Y --b X,Y [--no-repeat] [--cell CELL.png] [--json]\n"
        "                          the average over the lattice of cell vectors a - origin and\n"
        "                          b - origin, repeated over the image into OUT (with\n"
        "                          --no-repeat OUT.png is the averaged cell); --json prints the\n"
        "                          cell box, the number of cells and the extremes of the sums\n"
        "  level IN OUT --method NAME [--degree X,Y] [--order N] [--threshold LO,HI]\n"
        "        [--region AX,AY,BX,BY,CX,CY] [--points X1,Y1,X2,Y2,X3,Y3] [--slope SX,SY]\n"
        "        [--preview PNG] [--background PNG]\n"
        "                          background subtraction, the result saved as OUT (.tif, or\n"
        "                          .png for its picture); NAME: offsets polyx polyy lines plane3\n"
        "                          poly manual; points in a 0 to 511 square over the image;\n"
        "                          --preview: the tool's second store, --background: the same\n"
        "                          with the background beside the result\n"
        "  filter IN OUT --kernel NAME [--user K1,...]\n"
        "                          one filter on the image, the result saved as OUT (.tif, or\n"
        "                          .png for its picture); NAME: low3 med3 high3 hsmooth3\n"
        "                          vsmooth3 user1-3 user2-3 low5 med5 high5 hsmooth5 vsmooth5\n"
        "                          user1-5 user2-5 edge-v edge-h edge-d1 edge-d2 laplace median5\n"
        "                          median9; --user sets a user kernel first (9 or 25 values)\n"
        "  filter IN OUT --diff ANGLE\n"
        "                          the derivative at ANGLE degrees to the x-axis\n"
        "  fft IN OUT [--band space|time LO,HI] [--stop] [--circle CX,CY,RX,RY] [--zoom Z]\n"
        "        [--mask-open F] [--mask-save F] [--overlay F.png] [--apply] [--inverse]\n"
        "        [--enhance N]\n"
        "                          the forward transform (centred log power spectrum), a mask\n"
        "                          of bands or circles in display points (--stop: they stop),\n"
        "                          its overlay, then apply or the filtered inverse; OUT .tif\n"
        "                          keeps the complex data, .png shows the spectrum or result\n"
        "  plot IN -o OUT.png [--log-x] [--log-y] [--grid] [--box] [--size WxH]\n"
        "                          the plot of a spectrum, profile or histogram as the window\n"
        "                          shows it (log axes need data above 0)\n"
        "  spec IN OUT --smooth N | --median N | --diff MODE[,N] | --math-x OP[,C]\n"
        "        | --math-y OP[,C] | --dc | --split | --with B --op N\n"
        "                          one command on the spectrum, the result saved as OUT (.spc,\n"
        "                          .dat, or .png for its plot); --diff MODE: 1 first, 2 second,\n"
        "                          3 and 4 normalised, N the window (5 to 25); OP 1 add, 2\n"
        "                          multiply, 3 divide by C, 4 ln, 5 negate, 6 abs, 7 1/v, 8\n"
        "                          sort; --with: 1 add, 2 subtract, 3 |a-b|, 4 product, 5\n"
        "                          divide, 6 average\n"
        "  spec IN OUT --zoom X1,X2[,Y1,Y2] | --table [--delimiter D] [--no-header]\n"
        "                          the points inside a box (at least 16) as a new spectrum;\n"
        "                          the text table of the spectrum (D 0 blank, 1 comma, 2 tab)\n"
        "  specfit IN --degree N [--json]\n"
        "                          the polynomial of degree 1 to 19 with the error of each\n"
        "                          coefficient, the standard deviation and the correlation\n"
        "  specfft IN --window W [-o OUT.png] [--csv]\n"
        "                          the magnitude spectrum under window 1 none, 2 cosine, 3\n"
        "                          Parzen, 4 Hamming, 5 cosine arch (points a power of two)\n"
        "  multispec A.spc B.spc ... -o OUT.png [--primary N] [--shift I:X,Y]\n"
        "        [--gain I:X,Y] [--load S.txt] [--save S.txt] [--export E.txt]\n"
        "                          the spectra overlaid, each with its shift and gain (items\n"
        "                          from 1, a two-way spectrum two); the arrangement saved or\n"
        "                          loaded as a settings file, the marker values exported\n"
        "  attached IN -o OUT.png  the image with the places of its attached spectra, the first\n"
        "                          of them plotted\n"
        "  lut IN OUT --contrast B,C,G | --threshold LO,HI [--transform] | --equalise\n"
        "        | --linearise | --op NAME[:K]\n"
        "                          one command on the image's level table, the result saved as\n"
        "                          OUT (.tif, or .png for its picture); B -128 to 128, C 0 to\n"
        "                          256, G 0.1 to 10; LO, HI in the image's unit (--transform:\n"
        "                          the codes too); NAME: invert reverse add:K and:K or:K xor:K\n"
        "                          mul:F div:F\n"
        "  math IN OUT --op NAME[:C]\n"
        "                          arithmetic on the codes; NAME: invert mul:F div:F and:C or:C\n"
        "                          xor:C add:C sub:C\n"
        "  math2 A B OUT --op NAME two images of one size and source point by point; NAME: add\n"
        "                          sub diff mul div and or xor min max\n"
        "  normalise IN OUT [--sd R]\n"
        "                          stretch the code range to full scale, or R s.d. about the\n"
        "                          mean over the levels\n"
        "  histogram IN -o OUT.png|OUT.dat\n"
        "                          the level histogram of the image as a plot or a table\n"
        "  particles IN --band LO,HI [--connectivity 4|8] [--erode N] [--dilate N]\n"
        "        [--isolate N] [--sort none|area|perimeter|shape] [--stats OUT.txt]\n"
        "        [--bilevel OUT.tif|png] [--json]\n"
        "                          particle analysis of the grey-level band LO..HI (0 to\n"
        "                          255): prints the summary lines (JSON: the summary and every\n"
        "                          object); --isolate removes objects of N pixels and fewer\n"
        "  map info FILE [--json]  the SPS Mapping set of the file: kind, images, sweep, data\n"
        "                          range, hit data (--json: header, display block, images)\n"
        "  map cube FILE -o OUT.npy [--codes]\n"
        "                          the set as a numpy array (ni, cy, cx) of f32 physical\n"
        "                          values, or of the u16 codes with --codes\n"
        "  map composite FILE -o OUT.png [--frame 0|64|128] [--n N] [--select 0-4]\n"
        "        [--mode 0-4] [--labels 0|1|2] [--topo]\n"
        "                          the sheet of frames of the set\n"
        "  map slice FILE (--image K | --at V) -o OUT.png\n"
        "                          one image of the set (by number from 0, or nearest sweep\n"
        "                          value), large, with its text\n"
        "  map page FILE --page P [--size 64|128] -o OUT.png\n"
        "                          page P (from 0) of the paged browser\n"
        "  map replay FILE -o DIR  the rapid replay: DIR/replay_NNNN.png for every image, all\n"
        "                          on the colour scale of the whole set\n"
        "  measure IN [--point X,Y] [--line X1,Y1,X2,Y2] [--rect AX,AY,BX,BY,CX,CY]\n"
        "          [--circle CX,CY,RX,RY] [--polygon X,Y,... --seed X,Y] [--base MODE]\n"
        "          [--base-height H] [-o OUT.png] [--export OUT.txt]\n"
        "          [--spectra STEM --spc|--dat] [--json]\n"
        "                          markers on the image (each option repeatable): prints the\n"
        "                          summary table (JSON: the four columns and every marker);\n"
        "                          MODE none, above, below or both\n"
        "\n"
        "Options:\n"
        "  -v                      print the log lines as they are written\n"
        "  --yes, --no             answer every question of the library so\n"
        "  --user NAME             the login name (default: the system user)\n"
        "  --rgb                   frame stores keep a 24-bit layer (True-RGB mode)\n"
        "  --strict                any error the library reports makes the exit status 1 (a\n"
        "                          command on a file otherwise prints them as warnings and is\n"
        "                          judged by its result)\n"
        "  --version               print the start-up strings of the library\n"
        "  --help                  print this text\n"
        "\n"
        "Exit status: 0 success, 1 a command reported an error, 2 a usage error.\n",
        out);
}

int main(int argc, char** argv)
{
    HostOptions options;
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        std::string a = argv[i];
        if (a == "--version") return PrintVersion();
        if (a == "--help" || a == "-h") {
            PrintUsage(stdout);
            return 0;
        }
        if (a == "-v") options.verbose = true;
        else if (a == "--yes") options.defaultAnswer = TV_IDYES;
        else if (a == "--no") options.defaultAnswer = TV_IDNO;
        else if (a == "--rgb") options.trueRgb = true;
        else if (a == "--strict") options.strict = true;
        else if (a == "--user" && i + 1 < argc) options.user = argv[++i];
        else {
            std::fprintf(stderr, "tavrin: unknown option '%s'\n", argv[i]);
            PrintUsage(stderr);
            return 2;
        }
    }
    if (i >= argc) {
        PrintUsage(stderr);
        return 2;
    }
    auto found = CommandTable().find(argv[i]);
    if (found == CommandTable().end()) {
        std::fprintf(stderr, "tavrin: unknown command '%s'\n", argv[i]);
        PrintUsage(stderr);
        return 2;
    }
    Args args(argv + i + 1, argv + argc);
    if (!StartSession(options)) {
        std::fprintf(stderr, "tavrin: the library did not start\n");
        return 1;
    }
    int status = found->second.run(args);
    EndSession();
    // A command on a file is judged by what it made; a script or the demo, and any command under
    // --strict, by every error the library reported.
    const bool judgedByResult = !Session().workFile.empty() && !options.strict;
    if (status == 0 && Session().errorReported && !judgedByResult) status = 1;
    return status;
}
