/* SPDX-License-Identifier: MIT
 * A plugin for QEMU that counts the instructions that a program executes between two marks of gxinstructions, on one thread,
 * and writes the count as a line to the standard output. Debian's qemu-user loads plugins but does not bring their header, so
 * what is needed of it is declared here (version 1 of the interface). */
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
enum { kInlineAdd64 = 0 };

extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* tb);
extern void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                                  void (*made)(qemu_plugin_id_t, struct qemu_plugin_tb*));
extern void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* tb, int operation, void* counter,
                                                     uint64_t add);
extern void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id,
                                                 void (*called)(qemu_plugin_id_t, unsigned, int64_t, uint64_t, uint64_t,
                                                                uint64_t, uint64_t, uint64_t, uint64_t, uint64_t,
                                                                uint64_t));

#define VISIBLE __attribute__((visibility("default")))
VISIBLE int qemu_plugin_version = 1;
VISIBLE int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int argc, char** argv);

static const int64_t kMark = 0x47580;
static uint64_t executed;
static uint64_t begin;

/* A block that was translated is executed as a whole, or left by a fault, which no scene has. */
static void OnBlock(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(tb, kInlineAdd64, &executed, qemu_plugin_tb_n_insns(tb));
}

static void OnCall(qemu_plugin_id_t id, unsigned cpu, int64_t number, uint64_t which, uint64_t a2, uint64_t a3,
                   uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)id, (void)cpu, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if (number != kMark) {
        return;
    }
    if (which == 0) {
        begin = executed;
    } else {
        char line[32];
        const int length = snprintf(line, sizeof line, "%llu\n", (unsigned long long)(executed - begin));
        if (write(STDOUT_FILENO, line, (size_t)length) != length) {
            _exit(1);
        }
    }
}

int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int argc, char** argv) {
    (void)info, (void)argc, (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, OnBlock);
    qemu_plugin_register_vcpu_syscall_cb(id, OnCall);
    return 0;
}
