#include "framework/runtime_catalogue.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "framework/temp_runtime_folder.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;
using test::TempRuntimeFolder;

const std::wstring kCrLf = L"\r\n";

void expectKeyNotFount(const ErrorReport& report, int32_t fatherID, const std::wstring& key) {
    EXPECT_EQ(report.Name, L"KeyNotFount");
    EXPECT_EQ(report.Number, int64_t{0x80040000});
    EXPECT_EQ(report.Text, L"Function block ini file key not found: " + kCrLf + L"FatherID: " +
                               std::to_wstring(fatherID) + kCrLf + L"Key: " + key);
    EXPECT_EQ(report.Source, L"QxFBCom2");
    EXPECT_EQ(report.Module, L"mdlGlobal");
    EXPECT_EQ(report.Procedure, L"ReadFromIni");
    EXPECT_EQ(report.Severity, 16);
}

void expectFileNotFount(const ErrorReport& report, int32_t fatherID, int32_t version) {
    EXPECT_EQ(report.Name, L"FileNotFount");
    EXPECT_EQ(report.Number, int64_t{0x800402A6});
    EXPECT_EQ(report.Text, L"Function block RT files not found: " + kCrLf + L"FatherID: " + std::to_wstring(fatherID) +
                               kCrLf + L"Version: " + std::to_wstring(version));
    EXPECT_EQ(report.Source, L"QxFBCom2");
    EXPECT_EQ(report.Module, L"mdlGlobal");
    EXPECT_EQ(report.Procedure, L"srvGetHexFileDetails");
    EXPECT_EQ(report.Severity, 16);
}

void expectMissingFilesRecord(const FBHexFileDetails& details) {
    EXPECT_EQ(details.FBs, (Bytes{0, 0}));
    EXPECT_EQ(details.Jmp, (Bytes{0, 0}));
    EXPECT_EQ(details.FBsSize, 0);
    EXPECT_EQ(details.MinBiosVersion, 0);
    EXPECT_EQ(details.RealTimeMemorySize, 0);
}

TEST(RuntimeCatalogue, RuntimeFolderIsTheApplicationFolderWithTheFixedTail) {
    ScopedHostContext context;
    context->AppFolder = L"/opt/host/bin";
    EXPECT_EQ(RuntimeFolder(), L"/opt/host/bin/../FB_Lib/RT/");
}

TEST(RuntimeCatalogue, DefaultApplicationFolderFindsTheProjectsRuntimeFiles) {
    ScopedHostContext context;
    EXPECT_EQ(ReadCurrentHexFileVersion(170100), 100);
    EXPECT_EQ(ReadCurrentHexFileVersion(170200), 100);
    EXPECT_EQ(ReadHexFileVersionsList(170100), (std::vector<int32_t>{100}));
    FBHexFileDetails details = srvGetHexFileDetails(170200, 100);
    EXPECT_GT(details.FBsSize, 0);
    EXPECT_EQ(details.FBsSize, static_cast<int32_t>(details.FBs.size()));
    EXPECT_FALSE(details.Jmp.empty());
    EXPECT_GT(details.MinBiosVersion, 0);
    EXPECT_GT(details.RealTimeMemorySize, 0);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, ReadFromIniReturnsTheValueOfTheKeyInTheFamilysSection) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeText("170100.ini", "[170200]\r\nColour=blue\r\n[170100]\r\nColour=red\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"Colour"), L"red");
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, MissingKeyReportsKeyNotFountOnceAndGivesEmptyText) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "CurrentHexFileVersion=100\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"Version100_MinBiosVersion"), L"");
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"Version100_MinBiosVersion");
}

TEST(RuntimeCatalogue, KeyInAnotherSectionCountsAsMissing) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeText("170100.ini", "[170200]\r\nCurrentHexFileVersion=100\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"CurrentHexFileVersion"), L"");
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"CurrentHexFileVersion");
}

TEST(RuntimeCatalogue, MissingIniFileGivesTheSameReportAsAMissingKey) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    EXPECT_EQ(ReadFromIni(170200, L"HexFilesVersionsList"), L"");
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170200, L"HexFilesVersionsList");
}

TEST(RuntimeCatalogue, KeyWhoseValueIsNoResultCountsAsMissing) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "CurrentHexFileVersion=NO RESULT\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"CurrentHexFileVersion"), L"");
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"CurrentHexFileVersion");
}

TEST(RuntimeCatalogue, ValueOf254CharactersComesBackWhole) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    std::string value;
    for (int i = 0; i < 254; ++i) value += static_cast<char>('a' + i % 26);
    folder.writeIni(170100, "Long=" + value + "\r\n");
    std::wstring read = ReadFromIni(170100, L"Long");
    EXPECT_EQ(read.size(), 254u);
    EXPECT_EQ(read, std::wstring(value.begin(), value.end()));
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, LongerValueIsCutTo254CharactersByTheBuffer) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    std::string value(300, 'x');
    folder.writeIni(170100, "Long=" + value + "\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"Long"), std::wstring(254, L'x'));
}

TEST(RuntimeCatalogue, ValueWithInnerBlanksKeepsThem) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "Words=  two  words  \r\n");
    EXPECT_EQ(ReadFromIni(170100, L"Words"), L"two  words");
}

TEST(RuntimeCatalogue, EmptyValueIsReturnedEmptyWithoutReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "Empty=\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"Empty"), L"");
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, CurrentHexFileVersionIsReadAsANumber) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "CurrentHexFileVersion=  205 \r\n");
    EXPECT_EQ(ReadCurrentHexFileVersion(170100), 205);
}

TEST(RuntimeCatalogue, MissingCurrentHexFileVersionReportsThenFailsWithTypeMismatch) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "HexFilesVersionsList=100\r\n");
    EXPECT_EQ(runtimeErrorOf([] { ReadCurrentHexFileVersion(170100); }), err::TypeMismatch);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"CurrentHexFileVersion");
}

TEST(RuntimeCatalogue, VersionsListWithOneNumberGivesAnArrayOfOne) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170200, "HexFilesVersionsList=100\r\n");
    EXPECT_EQ(ReadHexFileVersionsList(170200), (std::vector<int32_t>{100}));
}

TEST(RuntimeCatalogue, VersionsListIsSplitAtSemicolonsInOrder) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170200, "HexFilesVersionsList=100;101; 205\r\n");
    EXPECT_EQ(ReadHexFileVersionsList(170200), (std::vector<int32_t>{100, 101, 205}));
}

TEST(RuntimeCatalogue, MissingVersionsListReportsThenFailsWithTypeMismatch) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170200, "CurrentHexFileVersion=100\r\n");
    EXPECT_EQ(runtimeErrorOf([] { ReadHexFileVersionsList(170200); }), err::TypeMismatch);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170200, L"HexFilesVersionsList");
}

TEST(RuntimeCatalogue, VersionsListWithAnEmptyElementFailsWithTypeMismatch) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170200, "HexFilesVersionsList=100;;101\r\n");
    EXPECT_EQ(runtimeErrorOf([] { ReadHexFileVersionsList(170200); }), err::TypeMismatch);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, HexFileDetailsHoldBothFilesWholeAndTheVersionsNumbers) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100,
                    "Version100_MinBiosVersion=7\r\nVersion100_RealTimeMemorySize=512\r\n"
                    "Version101_MinBiosVersion=8\r\nVersion101_RealTimeMemorySize=1024\r\n");
    folder.writeBytes("170100V101.FBs", {0x10, 0x00, 0xFF, 0x7E, 0x0A});
    folder.writeBytes("170100V101.Jmp", {0x20, 0x0D});
    FBHexFileDetails details = srvGetHexFileDetails(170100, 101);
    EXPECT_EQ(details.FBs, (Bytes{0x10, 0x00, 0xFF, 0x7E, 0x0A}));
    EXPECT_EQ(details.Jmp, (Bytes{0x20, 0x0D}));
    EXPECT_EQ(details.FBsSize, 5);
    EXPECT_EQ(details.MinBiosVersion, 8);
    EXPECT_EQ(details.RealTimeMemorySize, 1024);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, MissingCodeAndJumpFilesReportOnceAndGiveTwoZeroBytes) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    FBHexFileDetails details = srvGetHexFileDetails(170100, 102);
    expectMissingFilesRecord(details);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectFileNotFount(context->Reports[0], 170100, 102);
}

TEST(RuntimeCatalogue, OnlyTheCodeFilePresentReportsOnceAndDropsItsData) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170200);
    folder.remove("170200V100.Jmp");
    FBHexFileDetails details = srvGetHexFileDetails(170200, 100);
    expectMissingFilesRecord(details);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectFileNotFount(context->Reports[0], 170200, 100);
}

TEST(RuntimeCatalogue, OnlyTheJumpFilePresentReportsOnce) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    folder.remove("170100V100.FBs");
    FBHexFileDetails details = srvGetHexFileDetails(170100, 100);
    expectMissingFilesRecord(details);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectFileNotFount(context->Reports[0], 170100, 100);
}

TEST(RuntimeCatalogue, EmptyCodeFileRaisesSubscriptOutOfRangeWithoutReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100, {}, {1});
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), err::SubscriptOutOfRange);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, EmptyJumpFileRaisesSubscriptOutOfRangeWithoutReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100, {1}, {});
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), err::SubscriptOutOfRange);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, CodeFileThatIsAFolderRaisesPathFileAccessErrorWithoutReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    folder.remove("170100V100.FBs");
    std::filesystem::create_directory(folder.rt() / "170100V100.FBs");
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), 75);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, AnIniThatIsAFifoIsAnsweredAtOnceAsAMissingFile) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    ASSERT_EQ(::mkfifo((folder.rt() / "170100.ini").c_str(), 0600), 0);
    EXPECT_EQ(ReadFromIni(170100, L"CurrentHexFileVersion"), L"");
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"CurrentHexFileVersion");
}

TEST(RuntimeCatalogue, AnIniLinkedToADeviceIsAMissingFile) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    for (const char* device : {"/dev/zero", "/dev/urandom"}) {
        std::filesystem::remove(folder.rt() / "170200.ini");
        std::filesystem::create_symlink(device, folder.rt() / "170200.ini");
        EXPECT_EQ(ReadFromIni(170200, L"HexFilesVersionsList"), L"") << device;
    }
    EXPECT_EQ(context->Reports.size(), 2u);
}

TEST(RuntimeCatalogue, AnIniPastItsLimitIsAMissingFile) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    // The key is there, but behind more than half a MiB of comments.
    folder.writeIni(170100, std::string(600 * 1024, ';') + "\r\nCurrentHexFileVersion=100\r\n");
    EXPECT_EQ(ReadFromIni(170100, L"CurrentHexFileVersion"), L"");
    EXPECT_EQ(context->Reports.size(), 1u);
}

TEST(RuntimeCatalogue, ARuntimeFileThatIsAFifoRaisesPathFileAccessErrorAtOnce) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    folder.remove("170100V100.Jmp");
    ASSERT_EQ(::mkfifo((folder.rt() / "170100V100.Jmp").c_str(), 0600), 0);
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), 75);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, ARuntimeFileOf2GiBOrMoreIsAnOverflowNotANegativeSize) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    // A sparse file: it takes no room on the disk.
    std::filesystem::resize_file(folder.rt() / "170100V100.FBs", (uintmax_t{1} << 31) + (uintmax_t{1} << 30));
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), err::Overflow);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, ALatin1ApplicationFolderFindsItsRuntimeFiles) {
    ScopedHostContext context;
    const std::filesystem::path root =
        std::filesystem::temp_directory_path() / ("qxfb_caf\xE9_" + std::to_string(::getpid()));
    std::filesystem::create_directories(root / "bin");
    std::filesystem::create_directories(root / "FB_Lib" / "RT");
    std::ofstream(root / "FB_Lib" / "RT" / "170100.ini", std::ios::binary)
        << "[170100]\r\nCurrentHexFileVersion=321\r\n";
    // The folder name comes in as bytes, from the environment or a command line.
    host().AppFolder = fromUtf8((root / "bin").string());
    EXPECT_EQ(ReadFromIni(170100, L"CurrentHexFileVersion"), L"321");
    EXPECT_TRUE(context->Reports.empty());
    std::filesystem::remove_all(root);
}

TEST(RuntimeCatalogue, MissingVersionKeyAfterTheFilesReportsThenFailsWithTypeMismatch) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    folder.writeIni(170100, "Version100_RealTimeMemorySize=512\r\n");
    EXPECT_EQ(runtimeErrorOf([] { srvGetHexFileDetails(170100, 100); }), err::TypeMismatch);
    ASSERT_EQ(context->Reports.size(), 1u);
    expectKeyNotFount(context->Reports[0], 170100, L"Version100_MinBiosVersion");
}

TEST(RuntimeCatalogue, ValuesChangeOnDiskWithoutARestart) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100, {1, 2, 3});
    EXPECT_EQ(ReadCurrentHexFileVersion(170100), 100);
    EXPECT_EQ(srvGetHexFileDetails(170100, 100).FBs, (Bytes{1, 2, 3}));
    folder.writeIni(170100,
                    "CurrentHexFileVersion=101\r\nHexFilesVersionsList=100;101\r\n"
                    "Version100_MinBiosVersion=9\r\nVersion100_RealTimeMemorySize=640\r\n");
    folder.writeBytes("170100V100.FBs", {9, 8});
    EXPECT_EQ(ReadCurrentHexFileVersion(170100), 101);
    EXPECT_EQ(ReadHexFileVersionsList(170100), (std::vector<int32_t>{100, 101}));
    FBHexFileDetails details = srvGetHexFileDetails(170100, 100);
    EXPECT_EQ(details.FBs, (Bytes{9, 8}));
    EXPECT_EQ(details.FBsSize, 2);
    EXPECT_EQ(details.MinBiosVersion, 9);
    EXPECT_EQ(details.RealTimeMemorySize, 640);
}

TEST(RuntimeCatalogue, LoadFBImagesOfAMethodWithoutIconsGivesThreeEmptyPictures) {
    ScopedHostContext context;
    PicturePtr menu = std::make_shared<Picture>(), ladder = std::make_shared<Picture>(),
               selected = std::make_shared<Picture>();
    LoadFBImages(170103, menu, ladder, selected);
    EXPECT_EQ(menu, nullptr);
    EXPECT_EQ(ladder, nullptr);
    EXPECT_EQ(selected, nullptr);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, LoadFBImagesOfTheSerialFamilyGivesA16By16MenuIconAndNoLadderPictures) {
    ScopedHostContext context;
    PicturePtr menu, ladder, selected;
    LoadFBImages(170100, menu, ladder, selected);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->Width, 16);
    EXPECT_EQ(menu->Height, 16);
    EXPECT_EQ(menu->Pixels.size(), 16u * 16u * 3u);
    EXPECT_EQ(ladder, nullptr);
    EXPECT_EQ(selected, nullptr);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(RuntimeCatalogue, AllSixMenuIconsExistAndNoOthers) {
    ScopedHostContext context;
    for (int32_t id : {170100, 170101, 170102, 170200, 170201, 170202}) {
        PicturePtr menu, ladder, selected;
        LoadFBImages(id, menu, ladder, selected);
        ASSERT_NE(menu, nullptr) << id;
        EXPECT_EQ(menu->Width, 16) << id;
    }
    for (int32_t id : {170000, 170104, 170105, 170203, 170300}) {
        PicturePtr menu, ladder, selected;
        LoadFBImages(id, menu, ladder, selected);
        EXPECT_EQ(menu, nullptr) << id;
    }
}

TEST(RuntimeCatalogue, GetTextGivesTheWordsOfTheHostsTextTable) {
    ScopedHostContext context;
    context->TextOverrides[221] = L"Send words";
    EXPECT_EQ(GetText(221), L"Send words");
    EXPECT_EQ(GetText(328), L"User-defined protocol over a serial COM port");
}

TEST(RuntimeCatalogue, ShowMessageRecordsTheMessageWithItsParametersAndReturnsTheAnswer) {
    ScopedHostContext context;
    context->Script()->QueueAnswer(7);
    EXPECT_EQ(ShowMessage(154, {L"32"}), 7);
    ASSERT_EQ(context->Messages.size(), 1u);
    EXPECT_EQ(context->Messages[0].Number, 154);
    EXPECT_EQ(context->Messages[0].Params, (std::vector<std::wstring>{L"32"}));
    EXPECT_EQ(context->Messages[0].Text, L"A set holds at most 32 messages.");
    EXPECT_EQ(context->Messages[0].Answer, 7);
}

TEST(RuntimeCatalogue, ShowMessageWithoutScriptedAnswerGivesTheDefaultAnswer) {
    ScopedHostContext context;
    EXPECT_EQ(ShowMessage(140), 1);
    ASSERT_EQ(context->Messages.size(), 1u);
    EXPECT_TRUE(context->Messages[0].Params.empty());
}

}  // namespace
}  // namespace qx
