// qxfb preview, loopback and decode, run as a user runs them on image files
// and text forms written by the library's own sets: the bytes and texts they
// print, their exit status, and their words for bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "inspect/text_form.h"
#include "message/protocol_date_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/scratch_files.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

std::wstring row(const std::wstring& fixed) {
    return fixed + std::wstring(clsProtocolMessage::MaxPositions - fixed.size(), L' ');
}

void writeImage(const fs::path& path, const Bytes& image) {
    test::writeFile(path, std::string(image.begin(), image.end()));
}

class QxfbModelTest : public ::testing::Test {
protected:
    ScopedHostContext host;
    std::string program = paths::builtCli();
    test::ScratchFolder scratch{"qxfb_model_test"};
    const fs::path folder = scratch.path();

    test::CliRun run(const std::string& arguments) { return test::runCli(program, arguments, folder); }
    std::string file(const std::string& name) { return test::shellQuoted((folder / name).string()); }

    // A scale's requests: 1 "W" CR, 2 "T" and six positions of MI 12 with
    // leading zeros, CR; STX and ETX.
    void writeSend() {
        clsProtocolSendSrv send;
        send.AppendMessage();
        clsProtocolMessage& weigh = *send.GetMessage(1);
        weigh.MessageString(row(L"W"));
        weigh.AddControlChar(1, 13);
        clsProtocolMessage& tare = *send.GetMessage(2);
        tare.MessageString(row(L"T"));
        auto number = std::make_shared<clsProtocolNumericVar>();
        number->StartPosition(1);
        number->BeforePoint(5);
        number->LeadingZeros(1);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        tare.AddVar(number);
        tare.AddControlChar(7, 13);
        send.SendSTXLength(1);
        send.SetSendSTXValue(0, 0x02, false);
        send.SendETXLength(1);
        send.SetSendETXValue(0, 0x03, false);
        writeImage(folder / "send.img", send.BinaryData());
        test::writeFile(folder / "send.json", textform::exportSendSet(send));
    }
    // The scale's side: the same two messages, the number into MI 40.
    void writeScan(bool withTare = true) {
        clsProtocolScanSrv scan;
        scan.MessageLengthValue(0);
        clsProtocolMessage& weigh = *scan.GetMessage(1);
        weigh.MessageString(row(L"W"));
        weigh.AddControlChar(1, 13);
        if (withTare) {
            scan.AppendMessage();
            clsProtocolMessage& tare = *scan.GetMessage(2);
            tare.MessageString(row(L"T"));
            auto number = std::make_shared<clsProtocolScanNumericVar>();
            number->StartPosition(1);
            number->BeforePoint(5);
            test::linkOperand(*number->LikedOperand(), 3, 40);
            tare.AddVar(number);
            tare.AddControlChar(7, 13);
        }
        scan.ScanSTXLength(1);
        scan.SetScanSTXValue(0, 0x02, false);
        scan.ScanETXLength(1);
        scan.SetScanETXValue(0, 0x03, false);
        writeImage(folder / "scan.img", scan.BinaryData());
        test::writeFile(folder / "scan.json", textform::exportScanSet(scan));
    }
};

TEST_F(QxfbModelTest, PreviewPrintsTheBytesOfAMessageWithItsValues) {
    writeSend();
    test::writeFile(folder / "values.txt", "# the tare\nMI 12 = -250\n");
    const test::CliRun out = run("preview " + file("send.img") + " --message 2 --values " + file("values.txt"));
    EXPECT_EQ(out.status, 0) << out.err;
    EXPECT_EQ(out.out,
              "Message 2: 10 bytes\n"
              "  hex:  02 54 2D 30 30 32 35 30 0D 03\n"
              "  text: <STX>T-00250<CR><ETX>\n");
    const test::CliRun first = run("preview " + file("send.img"));
    EXPECT_EQ(first.lines().at(1), "  hex:  02 57 0D 03");
}

TEST_F(QxfbModelTest, PreviewTakesTheClockForDateFields) {
    clsProtocolSendSrv send;
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(2);
    send.GetMessage(1)->AddVar(date);
    writeImage(folder / "date.img", send.BinaryData());
    // 24 November 2026 is a Tuesday.
    const test::CliRun out = run("preview " + file("date.img") + " --clock '2026-11-24 09:05:07'");
    EXPECT_EQ(out.status, 0) << out.err;
    EXPECT_EQ(out.lines().at(2), "  text: TUE");
    const test::CliRun bad = run("preview " + file("date.img") + " --clock tomorrow");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.err, "qxfb: --clock needs \"YYYY-MM-DD HH:MM:SS\", not \"tomorrow\"\n");
}

TEST_F(QxfbModelTest, ABadValuesFileNamesItsLine) {
    writeSend();
    test::writeFile(folder / "values.txt", "MI 12 = 1\nXX 3 = 4\n");
    const test::CliRun out = run("preview " + file("send.img") + " --values " + file("values.txt"));
    EXPECT_EQ(out.status, 1);
    EXPECT_EQ(out.err, "qxfb: " + (folder / "values.txt").string() + " line 2: unknown operand type \"XX\"\n");
    test::writeFile(folder / "values.txt", "MI 12 = one\n");
    EXPECT_EQ(run("preview " + file("send.img") + " --values " + file("values.txt")).err,
              "qxfb: " + (folder / "values.txt").string() + " line 1: a whole number expected after \"=\"\n");
}

TEST_F(QxfbModelTest, LoopbackOfAPairMadeToMatchIsClean) {
    writeSend();
    writeScan();
    const test::CliRun out = run("loopback " + file("send.img") + " " + file("scan.img"));
    EXPECT_EQ(out.status, 0) << out.out << out.err;
    EXPECT_EQ(out.out,
              "Send message 1 (<STX>W<CR><ETX>): Scan message 1\n"
              "Send message 2 (<STX>T+00000<CR><ETX>): Scan message 2\n"
              "Loopback clean\n");
}

TEST_F(QxfbModelTest, LoopbackSaysWhichMessageNothingTakesAndExitsWith1) {
    writeSend();
    writeScan(false);
    const test::CliRun out = run("loopback " + file("send.img") + " " + file("scan.img") + " --baud 1200");
    EXPECT_EQ(out.status, 1);
    EXPECT_EQ(out.out,
              "Send message 1 (<STX>W<CR><ETX>): Scan message 1\n"
              "Send message 2 (<STX>T+00000<CR><ETX>): no Scan message\n"
              "  message 1, position 0: \"W\" expected, \"T\" received\n"
              "warning: Send message 2 is taken by no Scan message\n"
              "Loopback found problems\n");
}

TEST_F(QxfbModelTest, DecodeTellsEachFrameOfACaptureFile) {
    writeScan();
    test::writeFile(folder / "capture.bin", std::string("\xFF\x02W\r\x03\x02T-00042\r\x03\x02X\x03\x02T", 20));
    const test::CliRun out = run("decode " + file("scan.img") + " " + file("capture.bin"));
    EXPECT_EQ(out.status, 1);
    EXPECT_EQ(out.out,
              "1 bytes before it belong to no frame\n"
              "Frame at 1 (4 bytes): <STX>W<CR><ETX>\n"
              "  message 1, 4 bytes received\n"
              "Frame at 5 (10 bytes): <STX>T-00042<CR><ETX>\n"
              "  message 2, 10 bytes received\n"
              "  field at position 1: MI 40 = -42\n"
              "Frame at 15 (3 bytes): <STX>X<ETX>\n"
              "  no message\n"
              "  message 1, position 0: \"W\" expected, \"X\" received\n"
              "  message 2, position 0: \"T\" expected, \"X\" received\n"
              "2 bytes at the end make no complete frame\n"
              "3 frames, 2 recognised\n");
    const test::CliRun hex = run("decode " + file("scan.img") + " --hex '02 57 0D 03'");
    EXPECT_EQ(hex.status, 0);
    EXPECT_EQ(hex.lines().back(), "1 frames, 1 recognised");
}

TEST_F(QxfbModelTest, InputsThatAreNoImagesOrNoFilesAreRefusedInWords) {
    writeScan();
    test::writeFile(folder / "junk.img", "not an image");
    const test::CliRun junk = run("preview " + file("junk.img"));
    EXPECT_EQ(junk.status, 1);
    EXPECT_EQ(junk.err.rfind("qxfb: " + (folder / "junk.img").string() + " is not a Send image: ", 0), 0u) << junk.err;
    EXPECT_EQ(run("decode " + file("scan.img") + " /dev/null").err,
              "qxfb: cannot read /dev/null: not a regular file\n");
    EXPECT_EQ(run("decode " + file("scan.img") + " " + file("missing")).err,
              "qxfb: cannot read " + (folder / "missing").string() + ": No such file or directory\n");
    const test::CliRun odd = run("decode " + file("scan.img") + " --hex 0");
    EXPECT_EQ(odd.status, 2);
    EXPECT_EQ(odd.err, "qxfb: --hex needs pairs of hexadecimal digits\nTry 'qxfb --help'.\n");
    EXPECT_EQ(run("preview").status, 2);
    EXPECT_EQ(run("loopback " + file("scan.img")).status, 2);
    EXPECT_EQ(run("preview " + file("scan.img") + " --message 0").status, 2);
    EXPECT_EQ(run("preview " + file("scan.img") + " --baud 9600").err,
              "qxfb: unknown option --baud\nTry 'qxfb --help'.\n");
}

TEST_F(QxfbModelTest, PreviewOfATextFormPrintsWhatItsImagePrints) {
    writeSend();
    test::writeFile(folder / "values.txt", "MI 12 = -250\n");
    const std::string options = " --message 2 --values " + file("values.txt");
    const test::CliRun image = run("preview " + file("send.img") + options);
    const test::CliRun text = run("preview " + file("send.json") + options);
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out, image.out);
    EXPECT_EQ(text.lines().at(1), "  hex:  02 54 2D 30 30 32 35 30 0D 03");
}

TEST_F(QxfbModelTest, LoopbackOfTextFormsPrintsWhatTheirImagesPrint) {
    writeSend();
    writeScan();
    const test::CliRun images = run("loopback " + file("send.img") + " " + file("scan.img"));
    ASSERT_EQ(images.status, 0) << images.err;
    for (const std::string& pair :
         {file("send.json") + " " + file("scan.json"), file("send.json") + " " + file("scan.img"),
          file("send.img") + " " + file("scan.json")}) {
        const test::CliRun text = run("loopback " + pair);
        EXPECT_EQ(text.status, 0) << pair << ": " << text.err;
        EXPECT_EQ(text.out, images.out) << pair;
    }
}

TEST_F(QxfbModelTest, DecodeAgainstATextFormPrintsWhatItsImagePrints) {
    writeScan();
    test::writeFile(folder / "capture.bin", std::string("\xFF\x02W\r\x03\x02T-00042\r\x03\x02X\x03", 18));
    const test::CliRun image = run("decode " + file("scan.img") + " " + file("capture.bin"));
    const test::CliRun text = run("decode " + file("scan.json") + " " + file("capture.bin"));
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out, image.out);
    EXPECT_NE(text.out.find("  field at position 1: MI 40 = -42\n"), std::string::npos) << text.out;
}

TEST_F(QxfbModelTest, ATextFormIsKnownByItsContentNotByItsName) {
    writeSend();
    // White space before the "{", and a name that says image.
    test::writeFile(folder / "set.bin", " \n\t" + test::readFile(folder / "send.json"));
    fs::copy_file(folder / "send.img", folder / "image.json");
    const test::CliRun reference = run("preview " + file("send.img"));
    const test::CliRun text = run("preview " + file("set.bin"));
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out, reference.out);
    const test::CliRun image = run("preview " + file("image.json"));
    EXPECT_EQ(image.status, 0) << image.err;
    EXPECT_EQ(image.out, reference.out);
}

TEST_F(QxfbModelTest, ATextFormOfTheOtherKindOrABrokenOneIsRefusedInWords) {
    writeScan();
    const test::CliRun other = run("preview " + file("scan.json"));
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.err,
              "qxfb: " + (folder / "scan.json").string() + " is the text form of a Scan set, not of a Send set\n");
    test::writeFile(folder / "broken.json", "{\n  \"format\": 7\n}\n");
    const test::CliRun broken = run("decode " + file("broken.json") + " --hex 00");
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.err.rfind("qxfb: " + (folder / "broken.json").string() + ": line ", 0), 0u) << broken.err;
}

TEST_F(QxfbModelTest, HelpListsTheModelCommandsBeforeTheOptions) {
    const test::CliRun help = run("--help");
    EXPECT_EQ(help.status, 0);
    const size_t preview = help.out.find("qxfb preview SEND [--message N] [--values FILE] [--clock TIME]");
    const size_t options = help.out.find("\nOptions:");
    ASSERT_NE(preview, std::string::npos);
    EXPECT_NE(help.out.find("qxfb loopback SEND SCAN [--baud B]"), std::string::npos);
    EXPECT_NE(help.out.find("qxfb decode SCAN (CAPTURE | --hex BYTES)"), std::string::npos);
    EXPECT_LT(preview, options);
}

}  // namespace
}  // namespace qx
