// hidl_handle as libhidlbase has it: a copy duplicates the descriptors and owns the clone, a
// handle given by pointer is not owned unless setTo() says so, a move hands ownership over.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>
#include <unistd.h>

namespace vesk::test {
namespace {

using ::android::hardware::hidl_handle;

bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

// A handle of one descriptor (a pipe's read end) and one integer.
native_handle_t* oneDescriptor(int* writeEnd) {
    int ends[2];
    EXPECT_EQ(0, pipe2(ends, O_CLOEXEC));
    *writeEnd = ends[1];
    native_handle_t* handle = native_handle_create(1, 1);
    handle->data[0] = ends[0];
    handle->data[1] = 42;
    return handle;
}

TEST(HidlHandleTest, LayoutIsTheDevicesOnEveryAbi) {
    EXPECT_EQ(16u, sizeof(hidl_handle));
    EXPECT_EQ(8u, alignof(hidl_handle));
}

TEST(HidlHandleTest, EmptyHandleHoldsNothing) {
    hidl_handle empty;
    EXPECT_EQ(nullptr, empty.getNativeHandle());
    hidl_handle copy(empty);
    EXPECT_EQ(nullptr, copy.getNativeHandle());
}

TEST(HidlHandleTest, AHandleGivenByPointerIsNotOwned) {
    int writeEnd;
    native_handle_t* native = oneDescriptor(&writeEnd);
    const int fd = native->data[0];
    {
        hidl_handle borrowed(native);
        EXPECT_EQ(native, borrowed.getNativeHandle());
    }
    EXPECT_TRUE(isOpen(fd));
    native_handle_close(native);
    native_handle_delete(native);
    close(writeEnd);
}

TEST(HidlHandleTest, ACopyDuplicatesTheDescriptorsAndClosesItsOwn) {
    int writeEnd;
    native_handle_t* native = oneDescriptor(&writeEnd);
    int copiedFd;
    {
        hidl_handle original(native);
        hidl_handle copy(original);
        ASSERT_NE(nullptr, copy.getNativeHandle());
        ASSERT_NE(native, copy.getNativeHandle());
        EXPECT_EQ(1, copy->numFds);
        EXPECT_EQ(1, copy->numInts);
        EXPECT_EQ(42, copy->data[1]);
        copiedFd = copy->data[0];
        EXPECT_NE(native->data[0], copiedFd);
        // The copy reads the same pipe.
        ASSERT_EQ(1, write(writeEnd, "x", 1));
        char byte = 0;
        EXPECT_EQ(1, read(copiedFd, &byte, 1));
        EXPECT_EQ('x', byte);
    }
    EXPECT_FALSE(isOpen(copiedFd));
    EXPECT_TRUE(isOpen(native->data[0]));
    native_handle_close(native);
    native_handle_delete(native);
    close(writeEnd);
}

TEST(HidlHandleTest, SetToWithOwnershipClosesOnDestruction) {
    int writeEnd;
    native_handle_t* native = oneDescriptor(&writeEnd);
    const int fd = native->data[0];
    {
        hidl_handle owner;
        owner.setTo(native, true);
        hidl_handle moved(std::move(owner));
        EXPECT_EQ(nullptr, owner.getNativeHandle());  // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(native, moved.getNativeHandle());
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
    close(writeEnd);
}

}  // namespace
}  // namespace vesk::test
