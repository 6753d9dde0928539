# The front door: every target installs what it needs and sets itself up.

# `make test` and `make lint-changed` let clang-tidy read what has changed since this commit.
SINCE ?= HEAD~1
# `make web` serves the page at this port.
PORT ?= 8480

.PHONY: help deps demo web demo-windows test test-windows torture windows package reproduce fuzz bench docs pictures format lint lint-changed clean

help: ## this list
	@grep -hE '^[a-z-]+:.*##' $(MAKEFILE_LIST) | sed -E 's/^([a-z-]+):.*## /  make \1\t/' | expand -t 22

deps: ## install what the other targets need, and do nothing else
	@scripts/bootstrap build test browser package bench help lint windows

demo: ## six simulated game servers, one host: see what the program is for
	@scripts/bootstrap build
	@scripts/quietly cmake --preset release
	@scripts/quietly cmake --build --preset release --target rotacasts-host game-server-sim
	@setpriv --pdeathsig TERM scripts/demo build/release/bin

web: ## the same with the page for administrators, at a printed address (port 8480, or PORT=...), until Ctrl-C
	@scripts/bootstrap build
	@scripts/quietly cmake --preset release
	@scripts/quietly cmake --build --preset release --target rotacasts-host game-server-sim
	@setpriv --pdeathsig TERM scripts/web build/release/bin $(PORT)

demo-windows: ## the Windows host, plugin and page on Wine, clicked through; leaves pictures
	@scripts/bootstrap build help windows browser
	@preset=$$(scripts/windows-preset) && scripts/quietly cmake --preset $$preset && \
	scripts/quietly cmake --build --preset $$preset \
	  --target keeper tvxRT rotacasts-host game-server-sim && \
	scripts/under-wine build/$$preset/tests/win32/keeper.exe \
	  scripts/demo-windows build/$$preset build/demo-windows && \
	scripts/under-wine build/$$preset/tests/win32/keeper.exe \
	  scripts/page-picture build/$$preset/under-wine build/demo-windows/windows-page.png && \
	echo "Six Windows game servers on the Windows host's page: build/demo-windows/windows-page.png"

test: ## compile all that is in the tree, and run every test
	@scripts/bootstrap build help test bench lint
	@scripts/bootstrap browser || { echo "NOT TESTED: the page; no browser can be had" >&2; [ -z "$$CI" ]; }
	cmake --preset sanitized
	cmake --build --preset sanitized
	scripts/lint $(SINCE)
	ctest --preset sanitized
	cmake --preset fuzz
	cmake --build --preset fuzz
	ctest --preset fuzz
	@scripts/test-windows

test-windows: ## the part of it that is built for Windows and run under Wine
	@CI=1 scripts/test-windows

torture: ## kill a host and let editors save while it changes a list, again and again, and count the cost
	@scripts/bootstrap build test
	@scripts/quietly cmake --preset release
	@scripts/quietly cmake --build --preset release --target rotacasts-host
	ROTACASTS_PROGRAMS=build/release/bin PYTHONPATH=tests/support \
	  /usr/bin/python3 -B tests/torture.py 1000 100

windows: ## the plugin for Windows: build/windows/src/component/tvxRT.dll
	@scripts/bootstrap build help windows
	@scripts/quietly cmake --preset windows
	@scripts/quietly cmake --build --preset windows --target tvxRT help_file
	@ls -l build/windows/src/component/tvxRT.dll

# Whatever is given away carries the moment of the commit.
package: export SOURCE_DATE_EPOCH ?= $(shell git log -1 --format=%ct)
package: ## all that is given away, for Windows and for Debian, with checksums: build/package
	@scripts/bootstrap build package help windows
	@rm -rf build/package build/release/package
	@mkdir -p build/package
	@scripts/quietly cmake --preset release
	@scripts/quietly cmake --build --preset release
	@scripts/quietly cpack --config build/release/CPackConfig.cmake -B build/release/package
	@cp build/release/package/*.deb build/package/
	@scripts/quietly cmake --preset windows
	@scripts/quietly cmake --build --preset windows --target tvxRT help_file list-types rotacasts-host game-server-sim
	@scripts/package build/windows build/package >/dev/null
	@cd build/package && sha256sum -- * >SHA256SUMS && cat SHA256SUMS

reproduce: ## build all that is given away twice, in other folders, and compare every byte
	@scripts/reproduce

fuzz: ## a minute of arbitrary input for the remote operations and the INI reader
	@scripts/bootstrap build test
	@scripts/quietly cmake --preset fuzz
	@scripts/quietly cmake --build --preset fuzz
	build/fuzz/fuzz/remote-fuzz -fork=$$(nproc) -max_total_time=60 -timeout=20 -max_len=1500 \
	  -dict=fuzz/tokens.dict -artifact_prefix=build/fuzz/ build/fuzz/fuzz/found fuzz/seeds

bench: ## measure, each thing against a named opponent
	@scripts/bootstrap build bench
	@scripts/quietly cmake --preset bench
	@scripts/quietly cmake --build --preset bench
	build/bench/benchmarks/rotacasts-bench
	@scripts/bench-windows

docs: ## bring what the documents take from the code up to date
	@scripts/bootstrap build help test bench
	@scripts/quietly cmake --preset sanitized
	@scripts/quietly cmake --build --preset sanitized --target placeholder-table console-table
	@scripts/made-table build/sanitized/docs/placeholder-table docs/help/placeholders.md
	@scripts/made-table build/sanitized/docs/console-table docs/help/console.md

pictures: demo-windows package ## take the pictures of the documents again
	@scripts/under-wine build/windows/tests/win32/keeper.exe scripts/setup-pictures \
	  build/package/RotacastsSetup-*.exe build/demo-windows
	@scripts/bootstrap browser
	scripts/page-picture build/release/bin docs/page.png
	cp build/demo-windows/windows-host.png docs/
	cp $(patsubst docs/help/pictures/%,build/demo-windows/%,$(wildcard docs/help/pictures/*)) docs/help/pictures/

format: ## bring every source file into shape
	@scripts/bootstrap lint
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

lint: ## check the shape and let clang-tidy read the code
	@scripts/bootstrap build test bench lint
	@scripts/lint

lint-changed: ## the same, where clang-tidy reads only what has changed since the commit SINCE
	@scripts/bootstrap build test bench lint
	@scripts/lint $(SINCE)

clean: ## remove what was built
	rm -rf build
