// Several updates as one transaction (Ubootenv::Transaction): the partition is held from the
// first update's look-up to the end of the scope, other processes wait and then keep all of
// their changes and ours, a process killed inside the scope leaves its last complete save and
// the lock, and the catch-up with other processes' saves happens at the scope's first look-up.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <string>

#include "ChildProcess.h"
#include "EnvFixture.h"
#include "InterruptedWrite.h"
#include "PartitionLock.h"

namespace vesk::test {
namespace {

// The factory variables with `changes` applied.
std::map<std::string, std::string> factoryWith(const std::map<std::string, std::string>& changes) {
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : factoryVariables()) values[key] = value;
    for (const auto& [key, value] : changes) values[key] = value;
    return values;
}

class UbootenvTransactionScopeTest : public EnvTest {
  protected:
    std::string partition() const { return hostPath(kEnvDevice); }
    // What a fresh load finds, both copies checked to be valid and equal.
    std::map<std::string, std::string> stored() {
        std::string image = readDevice(kEnvDevice);
        EXPECT_TRUE(copyValid(image, 0));
        EXPECT_TRUE(copyValid(image, 65536));
        EXPECT_EQ(image.substr(0, 65536), image.substr(65536));
        Ubootenv env;
        EXPECT_TRUE(env.initDone);
        return variablesOf(env);
    }
};

TEST_F(UbootenvTransactionScopeTest, AnotherProcessUpdatingWaitsAndEveryChangeSurvives) {
    Signal loaded;
    Signal go;
    Child other([&] {
        loaded.senderSide();
        go.receiverSide();
        Ubootenv env;  // loaded before the scope holds the partition
        loaded.give();
        if (!go.await()) return 2;
        return env.updateValue("ubootenv.var.theirs", "2") == 0 ? 0 : 1;
    });
    loaded.receiverSide();
    go.senderSide();
    ASSERT_TRUE(loaded.await());

    Ubootenv mine;
    {
        Ubootenv::Transaction transaction(mine);
        ASSERT_EQ(0, mine.updateValue("ubootenv.var.first", "1"));
        go.give();
        ASSERT_TRUE(waitsForLock(other.pid(), partition())) << "the other update did not wait";
        ASSERT_EQ(0, mine.updateValue("ubootenv.var.second", "3"));
        EXPECT_FALSE(other.ended());
        // (A load here would wait for the scope too: the list in memory is what was saved.)
        EXPECT_EQ(factoryWith({{"first", "1"}, {"second", "3"}}), variablesOf(mine));
    }
    ChildEnd end = other.wait();
    ASSERT_TRUE(end.exited);
    EXPECT_EQ(0, end.code);
    EXPECT_EQ(factoryWith({{"first", "1"}, {"second", "3"}, {"theirs", "2"}}), stored());
}

// Killed while it holds the scope, between saves or inside one: the partition is that of the
// last save that ended (or, once the copy written first is whole, of the one cut short), and
// the lock is free.
TEST_F(UbootenvTransactionScopeTest, AProcessKilledInsideTheScopeLeavesItsLastCompleteSave) {
    const std::string factory = readDevice(kEnvDevice);
    const auto firstSave = factoryWith({{"hdmimode", "720p60hz"}});
    const auto secondSave = factoryWith({{"hdmimode", "720p60hz"}, {"custom_mode", "5,6"}});
    // Bytes of the write that reach the file: none, the CRC word alone (the copy torn), all.
    for (int write = -1; write < 2; ++write) {
        for (size_t bytes : {size_t{0}, size_t{4}, size_t{65536}}) {
            if (write < 0 && bytes > 0) continue;  // -1: killed between the saves
            SCOPED_TRACE("write " + std::to_string(write) + ", bytes " + std::to_string(bytes));
            writeDevice(kEnvDevice, factory);
            Signal saved;
            Child writer([&] {
                saved.senderSide();
                Ubootenv env;
                Ubootenv::Transaction transaction(env);
                if (env.updateValue("ubootenv.var.hdmimode", "720p60hz") != 0) return 1;
                saved.give();
                if (write < 0) pause();
                killInWrite(write, bytes);
                env.updateValue("ubootenv.var.custom_mode", "5,6");
                return 2;
            });
            saved.receiverSide();
            ASSERT_TRUE(saved.await());
            if (write < 0) {
                EXPECT_TRUE(heldElsewhere(partition()));
                writer.kill();
            }
            ChildEnd end = writer.wait();
            EXPECT_EQ(SIGKILL, end.signal) << "the writer was not killed";
            EXPECT_FALSE(heldElsewhere(partition()));

            Ubootenv after;
            ASSERT_TRUE(after.initDone);
            // Copy A is written first: once it is whole, it is the newer save.
            bool copyAWhole = write == 1 || (write == 0 && bytes == 65536);
            EXPECT_EQ(copyAWhole ? secondSave : firstSave, variablesOf(after));
            ASSERT_EQ(0, after.updateValue("ubootenv.var.next", "1"));
            auto expected = copyAWhole ? secondSave : firstSave;
            expected["next"] = "1";
            EXPECT_EQ(expected, stored());
        }
    }
}

TEST_F(UbootenvTransactionScopeTest, ThePartitionIsHeldFromTheFirstUpdateToTheEndOfTheScope) {
    Ubootenv env;
    {
        Ubootenv::Transaction transaction(env);
        EXPECT_FALSE(heldElsewhere(partition())) << "nothing is held before an update";
        ASSERT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
        EXPECT_TRUE(heldElsewhere(partition()));
        ASSERT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));  // unchanged
        EXPECT_TRUE(heldElsewhere(partition()));
        {
            Ubootenv::Transaction inner(env);
            ASSERT_EQ(0, env.updateValue("ubootenv.var.is.bestmode", "false"));
        }
        EXPECT_TRUE(heldElsewhere(partition())) << "an inner scope leaves it to the outer one";
    }
    EXPECT_FALSE(heldElsewhere(partition()));
    // Outside a scope an update holds it only while it runs.
    ASSERT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "1080p60hz"));
    EXPECT_FALSE(heldElsewhere(partition()));
    EXPECT_EQ(factoryWith({{"is.bestmode", "false"}}), stored());
}

// The lines of updates in a scope are those of updates made one by one, and an update that
// changes nothing saves nothing.
TEST_F(UbootenvTransactionScopeTest, UpdatesInAScopeLogAndSaveAsEachAlone) {
    Ubootenv env;
    takeEnvLog();
    {
        Ubootenv::Transaction transaction(env);
        EXPECT_EQ(0, env.updateValue("ubootenv.var.custom_mode", "1,2"));
        EXPECT_EQ(0, env.updateValue("ubootenv.var.custom_mode", "1,2"));
        EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "1080p60hz"));  // the factory's
        EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "999p60hz"));
    }
    const EnvLog saved = {kInfo, "updateValue",
                          "[ubootenv] Save ubootenv to /dev/block/env succeed!\n"};
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.custom_mode", "1,2"), saved,
                       updateLine("ubootenv.var.custom_mode", "1,2"),
                       updateLine("ubootenv.var.hdmimode", "1080p60hz"),
                       updateLine("ubootenv.var.hdmimode", "999p60hz"), saved}),
              takeEnvLog());
    EXPECT_EQ(factoryWith({{"custom_mode", "1,2"}, {"hdmimode", "999p60hz"}}), stored());
}

TEST_F(UbootenvTransactionScopeTest, ASaveMadeElsewhereIsCaughtUpAtTheScopesFirstLookUp) {
    Ubootenv mine;
    {
        Ubootenv other;
        ASSERT_EQ(0, other.updateValue("ubootenv.var.hdmimode", "720p60hz"));
        ASSERT_EQ(0, other.updateValue("ubootenv.var.theirs", "1"));
    }
    takeEnvLog();
    {
        Ubootenv::Transaction transaction(mine);
        // Stored already, by the other object: found so, nothing saved.
        EXPECT_EQ(0, mine.updateValue("ubootenv.var.hdmimode", "720p60hz"));
        EXPECT_EQ(0, mine.updateValue("ubootenv.var.mine", "2"));
    }
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       updateLine("ubootenv.var.mine", "2"),
                       {kInfo, "updateValue",
                        "[ubootenv] Save ubootenv to /dev/block/env succeed!\n"}}),
              takeEnvLog());
    EXPECT_EQ(factoryWith({{"hdmimode", "720p60hz"}, {"theirs", "1"}, {"mine", "2"}}), stored());
}

// A change whose saves all failed is kept in memory; when another process saved meanwhile, the
// scope's first look-up brings its save in and puts the change on top of it again.
TEST_F(UbootenvTransactionScopeTest, AnUnsavedChangeIsReplayedOnWhatWasSavedElsewhere) {
    const std::string factory = readDevice(kEnvDevice);
    Ubootenv mine;
    removeDevice(kEnvDevice);  // every save of the change fails to open it
    EXPECT_EQ(-1, mine.updateValue("ubootenv.var.pending", "1"));
    writeDevice(kEnvDevice, factory);
    {
        Ubootenv other;
        ASSERT_EQ(0, other.updateValue("ubootenv.var.theirs", "2"));
    }
    {
        Ubootenv::Transaction transaction(mine);
        ASSERT_EQ(0, mine.updateValue("ubootenv.var.mine", "3"));
    }
    EXPECT_EQ(factoryWith({{"pending", "1"}, {"theirs", "2"}, {"mine", "3"}}), stored());
}

// Inside a scope as outside: a partition that could not be read is not written over, and the
// next update of the scope reads it again.
TEST_F(UbootenvTransactionScopeTest, AnUnreadablePartitionIsReadAgainByTheNextUpdate) {
    Ubootenv env;
    const std::string good = readDevice(kEnvDevice);
    std::string damaged = good;
    damaged[10] ^= 0x20;
    damaged[65536 + 10] ^= 0x20;
    writeDevice(kEnvDevice, damaged);
    env.reInit();  // both copies bad: the object keeps initDone and knows the load failed
    {
        Ubootenv::Transaction transaction(env);
        EXPECT_EQ(-1, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
        EXPECT_TRUE(readDevice(kEnvDevice) == damaged) << "the partition was written";
        writeDevice(kEnvDevice, good);  // the same file, which the scope holds
        EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    }
    EXPECT_EQ(factoryWith({{"hdmimode", "720p60hz"}}), stored());
}

}  // namespace
}  // namespace vesk::test
