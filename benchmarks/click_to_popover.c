/* click_to_popover -p PID [-n CLICKS] [-d MS]   real clicks on the item of a process, timed
 * click_to_popover -p PID -r [-n TIMES]         from a request at the daemon to the new label,
 * timed
 *
 * Clicks: presses the left button over the item (XTest), holds it for MS milliseconds, 0 unless
 * said otherwise, releases it and watches the screen. A click's time runs from the release to the
 * first moment at which the popover's window (380 x 490)
 * shows what it shows once it has come to rest: at every change of the screen the picture is read
 * back, and the earliest one that equals the last one counts. A countdown's digits may differ: one
 * pixel in 200 may differ, but none among the buttons, the right half of the lowest 40 rows.
 * Those rows must also hold something. Prints `first MS` and `later MS` lines. The popover is
 * closed with a press of Escape each time.
 *
 * Requests: reads lines `request ... at MS` from standard input (the sample daemon's log, whose
 * time is the monotonic clock's) and prints `label MS` from each to the first change of the screen
 * inside the item that follows it. */
#include <errno.h>
#include <poll.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/res.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

enum {
    Width = 380,
    Height = 490,
    Footer = 40,
    Pixels = Width * Height,
    MaxFrames = 64,
    MaxDepth = 32
};
static const double SettleMs = 400, GiveUpMs = 10000, GuardMs = 400;

struct place {
    int x, y, width, height;
};

static xcb_connection_t *x;
static xcb_screen_t *screen;
static uint8_t damage_event;
static long pid, held;

struct frame {
    double at;
    uint32_t pixels[Pixels];
};
static struct frame *frames;

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec * 1e3 + (double)t.tv_nsec / 1e6;
}

static void fail(const char *what)
{
    fprintf(stderr, "click_to_popover: %s\n", what);
    exit(1);
}

static long owner(xcb_window_t window)
{
    xcb_res_client_id_spec_t spec = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    xcb_res_query_client_ids_reply_t *reply
        = xcb_res_query_client_ids_reply(x, xcb_res_query_client_ids(x, 1, &spec), NULL);
    long found = -1;
    if (reply) {
        xcb_res_client_id_value_iterator_t ids = xcb_res_query_client_ids_ids_iterator(reply);
        if (ids.rem && xcb_res_client_id_value_value_length(ids.data) > 0)
            found = (long)xcb_res_client_id_value_value(ids.data)[0];
        free(reply);
    }
    return found;
}

/* Finds a window of ours that can be seen: the item (inside somebody else's window) or the popover.
 */
static int find(xcb_window_t window, int popover, int depth, struct place *place)
{
    int found = 0;
    xcb_query_tree_reply_t *tree = xcb_query_tree_reply(x, xcb_query_tree(x, window), NULL);
    if (!tree)
        return 0;
    const xcb_window_t *children = xcb_query_tree_children(tree);
    for (int i = xcb_query_tree_children_length(tree) - 1; i >= 0 && !found; i--) {
        xcb_get_geometry_cookie_t geometry = xcb_get_geometry(x, children[i]);
        xcb_get_window_attributes_cookie_t attributes = xcb_get_window_attributes(x, children[i]);
        xcb_translate_coordinates_cookie_t translation
            = xcb_translate_coordinates(x, children[i], screen->root, 0, 0);
        xcb_get_geometry_reply_t *size = xcb_get_geometry_reply(x, geometry, NULL);
        xcb_get_window_attributes_reply_t *state
            = xcb_get_window_attributes_reply(x, attributes, NULL);
        xcb_translate_coordinates_reply_t *at
            = xcb_translate_coordinates_reply(x, translation, NULL);
        if (size && state && at && state->map_state == XCB_MAP_STATE_VIEWABLE) {
            const int fits = popover
                ? size->width == Width && size->height == Height
                : window != screen->root && size->width > 8 && size->height > 8;
            if (fits && owner(children[i]) == pid && (popover || owner(window) != pid)) {
                *place = (struct place){at->dst_x, at->dst_y, size->width, size->height};
                found = 1;
            } else if (depth < MaxDepth) {
                found = find(children[i], popover, depth + 1, place);
            }
        }
        free(size);
        free(state);
        free(at);
    }
    free(tree);
    return found;
}

static void fake(uint8_t type, uint8_t detail, int px, int py)
{
    xcb_test_fake_input(x, type, detail, 0, screen->root, (int16_t)px, (int16_t)py, 0);
}

static int grab(const struct place *place, uint32_t *pixels)
{
    xcb_get_image_reply_t *image = xcb_get_image_reply(x,
        xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, (int16_t)place->x,
            (int16_t)place->y, Width, Height, ~0u),
        NULL);
    if (!image || xcb_get_image_data_length(image) != Pixels * 4) {
        free(image);
        return 0;
    }
    memcpy(pixels, xcb_get_image_data(image), Pixels * 4);
    free(image);
    return 1;
}

static int same(const uint32_t *a, const uint32_t *b)
{
    int differing = 0;
    for (int row = Height - Footer; row < Height; row++) {
        const int buttons = row * Width + Width / 2;
        if (memcmp(a + buttons, b + buttons, (Width - Width / 2) * sizeof *a) != 0)
            return 0;
    }
    for (int i = 0; i < Pixels; i++)
        differing += (a[i] & 0xffffff) != (b[i] & 0xffffff);
    return differing <= Pixels / 200;
}

static int footer_drawn(const uint32_t *pixels)
{
    const uint32_t *row = pixels + (Height - Footer) * Width;
    int differing = 0;
    for (int i = 0; i < Footer * Width; i++)
        differing += (row[i] & 0xffffff) != (row[Width / 2] & 0xffffff);
    return differing > 20;
}

/* Waits for events until `deadline`; 1 when something on the screen changed (inside `within`, if
 * given). */
static int changed(double deadline, const struct place *within)
{
    int any = 0;
    for (;;) {
        xcb_generic_event_t *event;
        while ((event = xcb_poll_for_event(x))) {
            const uint8_t type = event->response_type & 0x7f;
            if (type == damage_event + XCB_DAMAGE_NOTIFY) {
                const xcb_rectangle_t *a = &((xcb_damage_notify_event_t *)event)->area;
                any |= !within
                    || (a->x < within->x + within->width && a->x + a->width > within->x
                        && a->y < within->y + within->height && a->y + a->height > within->y);
            } else if (type == XCB_MAP_NOTIFY || type == XCB_UNMAP_NOTIFY) {
                any |= !within;
            }
            free(event);
        }
        if (xcb_connection_has_error(x))
            fail("the display is gone");
        const double left = deadline - now();
        if (any || left <= 0)
            return any;
        struct pollfd fd = {xcb_get_file_descriptor(x), POLLIN, 0};
        if (poll(&fd, 1, left < 1 ? 1 : (int)left) < 0 && errno != EINTR)
            fail("cannot wait for the display");
    }
}

static void pause_for(double ms)
{
    const double end = now() + ms;
    while (now() < end)
        changed(end, NULL);
}

static double one_click(const struct place *item)
{
    struct place popover = {0, 0, 0, 0};
    int count = 0, is_open = 0;
    const int px = item->x + item->width / 2, py = item->y + item->height / 2;
    fake(XCB_MOTION_NOTIFY, 0, px - 2, py);
    fake(XCB_MOTION_NOTIFY, 0, px, py);
    free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), NULL));
    pause_for(50);

    fake(XCB_BUTTON_PRESS, 1, px, py);
    if (held > 0) {
        xcb_flush(x);
        pause_for((double)held);
    }
    const double released = now();
    fake(XCB_BUTTON_RELEASE, 1, px, py);
    xcb_flush(x);
    double rest = released + GiveUpMs;
    while (changed(rest, NULL)) {
        const double at = now();
        if (!is_open) {
            is_open = find(screen->root, 1, 0, &popover);
            if (!is_open) {
                if (at > released + GiveUpMs)
                    break;
                continue;
            }
        }
        if (count < MaxFrames) {
            frames[count].at = at;
            count += grab(&popover, frames[count].pixels);
        }
        rest = at + SettleMs;
        /* A spinning icon never rests: what counts was seen long before. */
        if (at > released + 4 * SettleMs || count == MaxFrames)
            break;
    }
    if (!is_open || count == 0)
        fail("no popover of 380 x 490 appeared");
    const uint32_t *last = frames[count - 1].pixels;
    if (!footer_drawn(last))
        fail("the popover's footer stayed empty");
    int first = count - 1;
    while (first > 0 && same(frames[first - 1].pixels, last))
        first--;
    return frames[first].at - released;
}

static void close_popover(uint8_t escape)
{
    struct place popover;
    fake(XCB_KEY_PRESS, escape, 0, 0);
    fake(XCB_KEY_RELEASE, escape, 0, 0);
    xcb_flush(x);
    const double end = now() + GiveUpMs;
    while (find(screen->root, 1, 0, &popover)) {
        if (now() > end)
            fail("Escape does not close the popover");
        changed(now() + 20, NULL);
    }
    /* For a quarter of a second the program ignores the click that closed it. */
    pause_for(GuardMs);
}

static uint8_t escape_key(void)
{
    const xcb_setup_t *setup = xcb_get_setup(x);
    const uint8_t count = (uint8_t)(setup->max_keycode - setup->min_keycode + 1);
    xcb_get_keyboard_mapping_reply_t *map = xcb_get_keyboard_mapping_reply(
        x, xcb_get_keyboard_mapping(x, setup->min_keycode, count), NULL);
    uint8_t code = 0;
    if (map) {
        const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(map);
        for (int i = 0; i < count && !code; i++)
            if (symbols[i * map->keysyms_per_keycode] == 0xff1b)
                code = (uint8_t)(setup->min_keycode + i);
        free(map);
    }
    return code;
}

/* Both are awaited at once, and the screen is looked at first: what changed before the request came
 * is none of its doing. A request that changes nothing within two seconds is left out. */
static void time_labels(const struct place *item, long times)
{
    char line[512];
    double asked = -1, drawn = -1;
    /* Unbuffered, so that poll() sees every line that waits. */
    setvbuf(stdin, NULL, _IONBF, 0);
    while (times > 0) {
        struct pollfd fds[2] = {{xcb_get_file_descriptor(x), POLLIN, 0}, {0, POLLIN, 0}};
        if (changed(now(), item))
            drawn = now();
        /* The line of a request may come after the label that it led to. */
        if (asked >= 0 && drawn >= asked) {
            if (drawn - asked < 2000) {
                printf("label %.3f\n", drawn - asked);
                fflush(stdout);
                times--;
            }
            asked = -1;
        }
        if (poll(fds, 2, -1) < 0 && errno != EINTR)
            fail("cannot wait for requests");
        if (fds[1].revents) {
            if (!fgets(line, sizeof line, stdin))
                return;
            const char *at = strstr(line, " at ");
            if (strncmp(line, "request", 7) == 0 && at)
                asked = strtod(at + 4, NULL);
        }
    }
}

int main(int argc, char **argv)
{
    long times = 20;
    int option, labels = 0;
    struct place item;
    while ((option = getopt(argc, argv, "p:n:d:r")) != -1) {
        switch (option) {
        case 'p':
            pid = strtol(optarg, NULL, 10);
            break;
        case 'n':
            times = strtol(optarg, NULL, 10);
            break;
        case 'd':
            held = strtol(optarg, NULL, 10);
            break;
        case 'r':
            labels = 1;
            break;
        default:
            pid = 0;
            optind = argc;
        }
    }
    if (pid <= 0 || times <= 0 || held < 0 || optind != argc) {
        fprintf(stderr, "usage: click_to_popover -p PID [-n TIMES] [-d MS] [-r]\n");
        return 2;
    }
    x = xcb_connect(NULL, NULL);
    if (xcb_connection_has_error(x))
        fail("cannot open the display");
    screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const xcb_query_extension_reply_t *damage = xcb_get_extension_data(x, &xcb_damage_id);
    const xcb_query_extension_reply_t *test = xcb_get_extension_data(x, &xcb_test_id);
    if (!damage || !damage->present || !test || !test->present)
        fail("the display lacks DAMAGE or XTEST");
    damage_event = damage->first_event;
    free(xcb_damage_query_version_reply(x, xcb_damage_query_version(x, 1, 1), NULL));
    free(xcb_res_query_version_reply(x, xcb_res_query_version(x, 1, 2), NULL));
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, screen->root, XCB_CW_EVENT_MASK, &mask);
    xcb_damage_create(x, xcb_generate_id(x), screen->root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    const double late = now() + GiveUpMs;
    while (!find(screen->root, 0, 0, &item)) {
        if (now() > late)
            fail("the process has no item in a panel");
        changed(now() + 50, NULL);
    }
    if (labels) {
        time_labels(&item, times);
        return 0;
    }
    frames = calloc(MaxFrames, sizeof *frames);
    if (!frames)
        fail("out of memory");
    const uint8_t escape = escape_key();
    /* The program has only just registered: nobody clicks before its item has come to rest. */
    const double deadline = now() + GiveUpMs;
    while (changed(now() + 1500, NULL) && now() < deadline)
        continue;
    if (!find(screen->root, 0, 0, &item))
        fail("the item went away");
    for (long i = 0; i < times; i++) {
        printf("%s %.3f\n", i == 0 ? "first" : "later", one_click(&item));
        fflush(stdout);
        close_popover(escape);
    }
    return 0;
}
