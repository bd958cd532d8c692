/* A plugin of the QEMU emulator: prints how many instructions the program ran between a system call 9999 and the next.
 * Debian ships no header for plugins, so the few declarations needed stand here (plugin interface, version 1). */
#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>

#define EXPORT __attribute__((visibility("default")))

struct qemu_plugin_tb;
typedef uint64_t plugin_id;
typedef void translated(plugin_id id, struct qemu_plugin_tb* block);
typedef void called(plugin_id id, unsigned cpu, int64_t number, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4,
                    uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8);
enum operation { ADD_U64 };

void qemu_plugin_register_vcpu_tb_trans_cb(plugin_id id, translated* f);
void qemu_plugin_register_vcpu_syscall_cb(plugin_id id, called* f);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, enum operation op, void* at,
                                              uint64_t value);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);

EXPORT int qemu_plugin_version = 1;
EXPORT int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv);

static uint64_t executed, started;
static int counting;

static void on_translation(plugin_id id, struct qemu_plugin_tb* block) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, ADD_U64, &executed, qemu_plugin_tb_n_insns(block));
}

static void on_call(plugin_id id, unsigned cpu, int64_t number, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4,
                    uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)id, (void)cpu, (void)a1, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if (number != 9999) return;
    if (counting) {
        printf("\t%" PRIu64, executed - started);
        fflush(stdout);
    }
    counting = !counting;
    started = executed;
}

int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv) {
    (void)info, (void)argc, (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
    qemu_plugin_register_vcpu_syscall_cb(id, on_call);
    return 0;
}
